#pragma once

// Drives a shown control's "Find / Replace" dialog through its own widgets.

#include "control/kvrtb.h"
#include "core/controlcore.h"
#include "core/recordingplatformservices.h"
#include "core/threadstate.h"
#include "findreplace/findreplace.h"
#include "findreplace/findreplacefrm.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QTest>

#include <memory>

namespace kvrtb::test {

class FindDialogDriver {
protected:
    RecordingPlatformServices m_services;
    std::unique_ptr<KvRTB> m_control;
    FindReplaceFrm *m_dialog = nullptr;

    /// Shows a control holding \a text with the caret at 0, and its find dialog.
    void open(const QString &text)
    {
        threadState().cancelRequested = false;
        m_services = RecordingPlatformServices();
        m_control = std::make_unique<KvRTB>(m_services);
        m_control->resize(500, 300);
        m_control->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_control.get()));
        m_control->setText(text);
        m_control->setSelStart(0);
        m_control->ShowFindReplace();
        m_dialog = m_control->core().findReplace().dialog();
        QVERIFY(m_dialog);
        QVERIFY(QTest::qWaitForWindowExposed(m_dialog));
    }
    void close()
    {
        m_control.reset();
        m_dialog = nullptr;
    }

    template <typename T>
    T *child(const char *name) const
    {
        T *widget = m_dialog->findChild<T *>(QLatin1String(name));
        if (!widget)
            qFatal("no control %s in the dialog", name);
        return widget;
    }
    void click(const char *name) const { QTest::mouseClick(child<QAbstractButton>(name), Qt::LeftButton); }
    QPair<int, int> selection() const { return {m_control->SelStart(), m_control->SelLength()}; }
    void select(int start, int length) const
    {
        m_control->setSelStart(start);
        m_control->setSelLength(length);
    }
    /// The text of the last message box, after checking its title and icon.
    QString lastMessage() const
    {
        const auto boxes = m_services.callsOf(QStringLiteral("messageBox"));
        if (boxes.isEmpty())
            return QString();
        if (boxes.last().title != QLatin1String("Search Complete") || boxes.last().icon != int(MessageIcon::Information))
            return QStringLiteral("wrong box: ") + boxes.last().title;
        return boxes.last().text;
    }
    int messageCount() const { return int(m_services.callsOf(QStringLiteral("messageBox")).size()); }
    void typeInto(const char *name, const QString &text) const
    {
        QLineEdit *box = child<QLineEdit>(name);
        box->selectAll();
        QTest::keyClick(box, Qt::Key_Delete);
        QTest::keyClicks(box, text);
    }
    void typeFindText(const QString &text) const { typeInto("FindTxt", text); }
};

} // namespace kvrtb::test
