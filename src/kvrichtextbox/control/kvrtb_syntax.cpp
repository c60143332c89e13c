// The keyword-colouring members: each forwards to the syntax area of the core.

#include "control/kvrtb.h"

#include "core/controlcore.h"
#include "syntax/syntax.h"

namespace kvrtb {

QVariant KvRTB::ApplyVB6Syntax(Syntax_Behavior Syntax_Method, Formatting_Options Syntax_Formatting)
{
    core().syntax().ApplyVB6Syntax(Syntax_Method, Syntax_Formatting);
    return QVariant();
}

QVariant KvRTB::ApplyVBNetSyntax(Syntax_Behavior Syntax_Method, Formatting_Options Syntax_Formatting)
{
    core().syntax().ApplyVBNetSyntax(Syntax_Method, Syntax_Formatting);
    return QVariant();
}

QVariant KvRTB::ApplyMySyntax(Syntax_Behavior Syntax_Method, Formatting_Options Syntax_Formatting)
{
    core().syntax().ApplyMySyntax(Syntax_Method, Syntax_Formatting);
    return QVariant();
}

void KvRTB::Cancel_Syntax()
{
    core().syntax().Cancel_Syntax();
}

bool KvRTB::CanCancelSyntax()
{
    return core().syntax().CanCancelSyntax();
}

} // namespace kvrtb
