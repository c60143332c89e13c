// The help members: the help document and What's This help.

#include "control/kvrtb.h"

#include "core/controlcore.h"
#include "help/helpfile.h"
#include "help/whatsthishelp.h"

namespace kvrtb {

void KvRTB::PointToWhatsThisHelpFile() { core().whatsThisHelp().PointToWhatsThisHelpFile(); }
QString KvRTB::GetHelpFile(bool NoColonFilePath) { return HelpFile::GetHelpFile(NoColonFilePath); }
void KvRTB::ShowHelp() { core().whatsThisHelp().showHelp(); }

} // namespace kvrtb
