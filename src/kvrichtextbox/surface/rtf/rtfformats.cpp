#include "surface/rtf/rtfformats.h"

#include <iterator>

namespace kvrtb::rtf {

namespace {

const char *const kBorderStyles[] = {
    "brdrs",       "brdrth",      "brdrsh",       "brdrdb",       "brdrdot",      "brdrdash",
    "brdrhair",    "brdrinset",   "brdroutset",   "brdrtriple",   "brdrdashsm",   "brdrdashd",
    "brdrdashdd",  "brdrdashdotstr", "brdrwavy",  "brdrwavydb",   "brdremboss",   "brdrengrave",
    "brdrframe",   "brdrtnthsg",  "brdrthtnsg",   "brdrtnthtnsg", "brdrtnthmg",   "brdrthtnmg",
    "brdrtnthtnmg", "brdrtnthlg", "brdrthtnlg",   "brdrtnthtnlg", "brdrnone",     "brdrnil",
    "brdrtbl",
};

} // namespace

const char *const *borderStyleWords()
{
    return kBorderStyles;
}

int borderStyleCount()
{
    return int(std::size(kBorderStyles));
}

QColor shadingColour(int hundredthsPercent, Colour pattern, Colour fill)
{
    const auto toColor = [](Colour c) { return QColor(int(c & 0xFF), int((c >> 8) & 0xFF), int((c >> 16) & 0xFF)); };
    if (hundredthsPercent <= 0)
        return fill == kAutoColour ? QColor() : toColor(fill);
    // The pattern colour (black when not given) over the fill (white when not given).
    const QColor front = pattern == kAutoColour ? QColor(Qt::black) : toColor(pattern);
    const QColor back = fill == kAutoColour ? QColor(Qt::white) : toColor(fill);
    const double share = std::min(hundredthsPercent, 10000) / 10000.0;
    const auto mix = [share](int a, int b) { return int(a * share + b * (1 - share) + 0.5); };
    return QColor(mix(front.red(), back.red()), mix(front.green(), back.green()), mix(front.blue(), back.blue()));
}

} // namespace kvrtb::rtf
