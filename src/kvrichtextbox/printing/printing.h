#pragma once

#include "printing/pagedecorations.h"

#include <QString>
#include <QVariant>

class QPagedPaintDevice;
class QPrinter;

namespace kvrtb {

class ControlCore;

/// \brief Printing and print preview of the control's document.
///
/// Pages carry the document as the editor shows it, on the document's own paper and within its
/// own margins when it has them (a loaded RTF file's page setup), otherwise within margins of
/// `PrinterMargin` twips on every side (see `effectiveMarginTwips`), with the heading, page numbers, date and custom text
/// of `decorations()` in the margins. Dialogs come from the platform services. Failures are
/// reported through the members' out arguments and a warning; no message box is shown.
class Printing {
public:
    /// `MyErr` when the user cancels the print dialog, and when printing fails.
    static constexpr short kCancelled = 32755;
    static constexpr short kPrinterError = 482;

    explicit Printing(ControlCore &core);

    /// The heading, its place, and the page-number and date choice (run-time settings).
    PageDecorations &decorations() { return m_decorations; }
    const PageDecorations &decorations() const { return m_decorations; }

    /// \brief Shows the print dialog and prints what the user chose: all pages, a page range,
    /// or the selection (offered when there is one).
    /// Returns the number of pages printed; 0 when cancelled (\a MyErr 32755) or when printing
    /// failed (\a MyErr 482). \a MyErr is 0 on success.
    int CommonDialogPrint(short *MyErr);
    /// \brief Prints without a dialog: the selection, or the whole document when nothing is
    /// selected. A string \a vStartDoc names a PDF file to print into instead of the default
    /// printer; any other value (or none) prints on the default printer. A system without a
    /// printer, or a file that cannot be written, prints nothing and gives a warning.
    void SelPrint(const QVariant &vStartDoc);
    /// True when the system has at least one printer. Printing into a PDF file needs none.
    bool PrinterInstalled() const;
    /// Shows the print preview of the whole document, from which the user may print.
    void ShowPrintPreview();

    /// \brief Prints onto \a device: the selection only when \a selectionOnly and there is one,
    /// pages \a fromPage to \a toPage (1-based, 0 = from the first / to the last).
    /// Returns the number of pages printed, or -1 with the reason in \a error.
    int printTo(QPagedPaintDevice &device, bool selectionOnly, int fromPage = 0, int toPage = 0,
                QString *error = nullptr) const;

private:
    /// Sets a new printer's paper and document name; false when the system has no printer.
    bool prepareSystemPrinter(QPrinter &printer) const;
    /// Puts a new printer on the document's paper when the document has one (a loaded RTF
    /// file's page setup), the default paper otherwise; the print dialog may still change it.
    void useDocumentPaper(QPrinter &printer, bool systemPrinter) const;

    ControlCore &m_core;
    PageDecorations m_decorations;
};

} // namespace kvrtb
