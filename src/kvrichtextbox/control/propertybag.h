#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

class QSettings;

namespace kvrtb {

/// \brief The keyed store in which a host keeps a control's persisted properties, one bag per
/// control instance.
///
/// Both operations take the property's default, as the host's bags do: reading an absent key
/// gives the default, and writing a value equal to the default stores nothing (an earlier value
/// under that key is removed, so the bag always mirrors the control). Values keep the type they
/// were written with; the property table converts what it reads back to the property's type.
/// A failure (the store cannot be read or written) comes back as false with a reason.
class PropertyBag {
public:
    virtual ~PropertyBag() = default;

    /// Puts the value stored under \a key, or \a defaultValue when there is none, into \a value.
    virtual bool readProperty(const QString &key, const QVariant &defaultValue, QVariant *value,
                              QString *error = nullptr) = 0;
    /// Stores \a value under \a key; when it equals \a defaultValue the key is left out instead.
    virtual bool writeProperty(const QString &key, const QVariant &value, const QVariant &defaultValue,
                               QString *error = nullptr) = 0;

    /// True when \a value and \a defaultValue are the same setting (numbers compare by value
    /// whatever their width; an invalid default equals only an invalid value).
    static bool isDefault(const QVariant &value, const QVariant &defaultValue);
};

/// \brief A property bag in memory: what a host keeps for a form that is not saved to disk, and
/// what tests inspect (the stored QVariant keeps the type it was written with).
class MemoryPropertyBag : public PropertyBag {
public:
    bool readProperty(const QString &key, const QVariant &defaultValue, QVariant *value,
                      QString *error = nullptr) override;
    bool writeProperty(const QString &key, const QVariant &value, const QVariant &defaultValue,
                       QString *error = nullptr) override;

    /// Puts a value in the bag directly, as a saved form would hold it.
    void insert(const QString &key, const QVariant &value) { m_values.insert(key, value); }
    bool contains(const QString &key) const { return m_values.contains(key); }
    /// The stored value as written (invalid when absent).
    QVariant value(const QString &key) const { return m_values.value(key); }
    QStringList keys() const { return m_values.keys(); }
    void clear() { m_values.clear(); }

private:
    QMap<QString, QVariant> m_values;
};

/// \brief A property bag over QSettings: each key is a settings key inside \a group (the
/// control's name on the host's form, for example).
///
/// Does not take ownership of the settings, which must outlive the bag. Text-based settings
/// formats keep numbers and Booleans as text; the property table converts them back.
class SettingsPropertyBag : public PropertyBag {
public:
    explicit SettingsPropertyBag(QSettings &settings, const QString &group = QString());

    bool readProperty(const QString &key, const QVariant &defaultValue, QVariant *value,
                      QString *error = nullptr) override;
    bool writeProperty(const QString &key, const QVariant &value, const QVariant &defaultValue,
                       QString *error = nullptr) override;

private:
    QString fullKey(const QString &key) const;
    bool checkStatus(const QString &key, const char *operation, QString *error) const;

    QSettings &m_settings;
    QString m_group;
};

} // namespace kvrtb
