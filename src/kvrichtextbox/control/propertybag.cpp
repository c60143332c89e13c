#include "control/propertybag.h"

#include <QSettings>

namespace kvrtb {

namespace {

bool isNumber(const QVariant &value)
{
    switch (value.metaType().id()) {
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
        return true;
    default:
        return false;
    }
}

void setError(QString *error, const QString &text)
{
    if (error)
        *error = text;
}

} // namespace

bool PropertyBag::isDefault(const QVariant &value, const QVariant &defaultValue)
{
    if (!defaultValue.isValid() || !value.isValid())
        return value.isValid() == defaultValue.isValid();
    // A 16-bit zero and a 32-bit zero are the same setting.
    if (isNumber(value) && isNumber(defaultValue))
        return value.toLongLong() == defaultValue.toLongLong();
    return value == defaultValue;
}

// --- MemoryPropertyBag ----------------------------------------------------------------------

bool MemoryPropertyBag::readProperty(const QString &key, const QVariant &defaultValue, QVariant *value,
                                     QString *)
{
    if (value)
        *value = m_values.value(key, defaultValue);
    return true;
}

bool MemoryPropertyBag::writeProperty(const QString &key, const QVariant &value, const QVariant &defaultValue,
                                      QString *)
{
    if (isDefault(value, defaultValue))
        m_values.remove(key);
    else
        m_values.insert(key, value);
    return true;
}

// --- SettingsPropertyBag --------------------------------------------------------------------

SettingsPropertyBag::SettingsPropertyBag(QSettings &settings, const QString &group)
    : m_settings(settings), m_group(group)
{
}

QString SettingsPropertyBag::fullKey(const QString &key) const
{
    return m_group.isEmpty() ? key : m_group + QLatin1Char('/') + key;
}

bool SettingsPropertyBag::checkStatus(const QString &key, const char *operation, QString *error) const
{
    switch (m_settings.status()) {
    case QSettings::NoError:
        return true;
    case QSettings::AccessError:
        setError(error, QStringLiteral("Could not %1 the property %2: the settings file %3 cannot be accessed.")
                            .arg(QLatin1String(operation), key, m_settings.fileName()));
        return false;
    case QSettings::FormatError:
        setError(error, QStringLiteral("Could not %1 the property %2: the settings file %3 is not in a readable format.")
                            .arg(QLatin1String(operation), key, m_settings.fileName()));
        return false;
    }
    return true;
}

bool SettingsPropertyBag::readProperty(const QString &key, const QVariant &defaultValue, QVariant *value,
                                       QString *error)
{
    if (!checkStatus(key, "read", error))
        return false;
    if (value)
        *value = m_settings.value(fullKey(key), defaultValue);
    return true;
}

bool SettingsPropertyBag::writeProperty(const QString &key, const QVariant &value, const QVariant &defaultValue,
                                        QString *error)
{
    if (isDefault(value, defaultValue))
        m_settings.remove(fullKey(key));
    else
        m_settings.setValue(fullKey(key), value);
    return checkStatus(key, "write", error);
}

} // namespace kvrtb
