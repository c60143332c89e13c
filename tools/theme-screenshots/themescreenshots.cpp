// Renders the control (ruler, text, a link, a selection and misspelt words underlined by
// spelling as you type) in a light and a dark palette, for the documentation. Run under a real
// window system (e.g. Xvfb), once per scale factor (QT_SCALE_FACTOR):
//   kvrtb-theme-screenshots OUTPUT_FOLDER SUFFIX

#include "control/kvrtb.h"
#include "core/controlcore.h"
#include "core/recordingplatformservices.h"
#include "spelling/spellasyoutype.h"

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>
#include <QTimer>

#include <cstdio>

using namespace kvrtb;

namespace {

QPalette darkPalette()
{
    QPalette p;
    p.setColor(QPalette::Window, QColor(45, 45, 48));
    p.setColor(QPalette::WindowText, QColor(230, 230, 230));
    p.setColor(QPalette::Base, QColor(30, 30, 30));
    p.setColor(QPalette::AlternateBase, QColor(45, 45, 48));
    p.setColor(QPalette::Text, QColor(230, 230, 230));
    p.setColor(QPalette::Button, QColor(60, 60, 64));
    p.setColor(QPalette::ButtonText, QColor(230, 230, 230));
    p.setColor(QPalette::Highlight, QColor(38, 79, 120));
    p.setColor(QPalette::HighlightedText, QColor(255, 255, 255));
    p.setColor(QPalette::Link, QColor(110, 170, 255));
    p.setColor(QPalette::Mid, QColor(80, 80, 84));
    p.setColor(QPalette::Dark, QColor(20, 20, 20));
    p.setColor(QPalette::Light, QColor(90, 90, 94));
    return p;
}

void pause(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

bool render(const QPalette &palette, const QString &path)
{
    QApplication::setPalette(palette);
    RecordingPlatformServices services;
    KvRTB control(services);
    control.setWindowTitle(QStringLiteral("KvRTB"));
    control.resize(620, 260);
    control.setDisplayRuler(true);
    control.setText(QStringLiteral(
        "Spelling as you type underlines wrods the dictionary does not know, like teh and recieve.\n"
        "The underline is paint only: never saved, never undone, never reported as underlining.\n"
        "Links such as www.example.com take the palette's link colour in a dark palette.\n"
        "The selected text below shows the highlight colour of this palette."));
    control.HyperLinkDocument();
    control.setSpellAsYouType(true);
    control.show();
    pause(300);
    control.core().spellAsYouType().checkPending();
    const QString text = control.Text();
    control.setSelStart(int(text.lastIndexOf(QStringLiteral("selected text"))));
    control.setSelLength(13);
    control.SetInFocus();
    pause(300);
    const bool ok = control.grab().save(path);
    std::printf("%s %s\n", ok ? "wrote" : "could not write", qPrintable(path));
    return ok;
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    if (argc < 3) {
        std::fprintf(stderr, "Usage: kvrtb-theme-screenshots OUTPUT_FOLDER SUFFIX\n");
        return 2;
    }
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    const QDir out(QString::fromLocal8Bit(argv[1]));
    QDir().mkpath(out.path());
    const QString suffix = QString::fromLocal8Bit(argv[2]);
    const QPalette light = QApplication::style()->standardPalette();
    bool ok = render(light, out.filePath(QStringLiteral("control-light-%1.png").arg(suffix)));
    ok = render(darkPalette(), out.filePath(QStringLiteral("control-dark-%1.png").arg(suffix))) && ok;
    return ok ? 0 : 1;
}
