#pragma once

// How a picture read from RTF is kept in the document: an image character (QTextImageFormat)
// whose name is a document resource holding the picture's original bytes. PNG and JPEG show
// as images; other kinds (metafiles, device-independent bitmaps) keep their bytes and their
// RTF description so that they are written back unchanged.

#include <QTextFormat>

namespace kvrtb::rtf {

enum PictureProperty {
    /// QByteArray: the RTF control words that describe the picture's kind and native size
    /// (for example "\pngblip\picw64\pich32"), without the display size.
    PictureHeader = QTextFormat::UserProperty + 40,
};

/// Prefix of the resource names of pictures read from RTF.
inline constexpr char kPictureResourcePrefix[] = "rtfpict:";

} // namespace kvrtb::rtf
