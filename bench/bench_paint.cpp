// What a paint of the editor costs: a large document of ordinary formatted paragraphs, and one
// whose paragraphs carry borders, tab leaders and shadowed letters (drawn by the surface on top
// of what Qt draws). Each figure is the best and the median of repaints of the viewport at pages
// spread through the document (the median says more than the mean on a busy machine).

#include "surface/qteditorsurface.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QElapsedTimer>
#include <QScrollBar>
#include <QWidget>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace kvrtb;

namespace {

// \a paragraphs paragraphs of mixed formatting; \a decorated adds a bordered box every fourth
// paragraph, a dotted tab leader and shadowed words.
QString makeRtf(int paragraphs, bool decorated)
{
    QString rtf = QStringLiteral("{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}{\\colortbl;\\red200\\green0\\blue0;}\n");
    for (int i = 0; i < paragraphs; ++i) {
        rtf += QStringLiteral("\\pard ");
        if (decorated && i % 4 == 0)
            rtf += QStringLiteral("\\box\\brdrs\\brdrw15\\brsp40 ");
        if (decorated)
            rtf += QStringLiteral("\\tqr\\tldot\\tx6000 ");
        rtf += QStringLiteral("Paragraph %1 has {\\b bold} and {\\cf1 red} words and ").arg(i);
        rtf += decorated ? QStringLiteral("{\\shad shadowed} text") : QStringLiteral("{\\i plain} text");
        rtf += QStringLiteral("\\tab %1 and enough words to wrap onto a second line of the editor now and then.\\par\n")
                   .arg(i);
    }
    return rtf + QLatin1Char('}');
}

void measure(const char *label, bool decorated)
{
    QtEditorSurface surface;
    QWidget *widget = surface.widget();
    widget->resize(800, 600);
    widget->show();
    surface.setRtf(makeRtf(20000, decorated));
    surface.lineCount(); // lays the document out
    auto *area = qobject_cast<QAbstractScrollArea *>(widget);
    if (!area)
        area = widget->findChild<QAbstractScrollArea *>();
    if (!area) {
        std::printf("%s: no scroll area found\n", label);
        return;
    }
    QScrollBar *bar = area->verticalScrollBar();
    QWidget *viewport = area->viewport();
    QApplication::processEvents();
    const int pages = 200;
    std::vector<double> times;
    for (int page = 0; page < pages; ++page) {
        bar->setValue(bar->maximum() / pages * page);
        QElapsedTimer timer;
        timer.start();
        viewport->repaint();
        times.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    std::printf("%-44s best %6.2f ms, median %6.2f ms a paint\n", label, times.front(), times[times.size() / 2]);
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    measure("20,000 ordinary paragraphs, 800x600 paint:", false);
    measure("20,000 bordered/leader/shadow paragraphs:", true);
    return 0;
}
