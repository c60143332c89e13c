#include "syntax/keywordpatterns.h"

#include <QFile>

namespace kvrtb {

QString KeywordPatterns::comment()
{
    return QStringLiteral("(')(.*)|\\b(Rem)\\b(.*)");
}

QString KeywordPatterns::string()
{
    return QStringLiteral("\"[^\"\\r\\n]*\"");
}

QString KeywordPatterns::vb6Keywords()
{
    return QStringLiteral(
        "\\b(AddressOf|Alias|And|Any|As|Base|Binary|Boolean|ByRef|Byte|ByVal|Call|Case|CBool|CByte|CCur|CDate|"
        "CDbl|CDec|CInt|CLng|Close|Compare|Const|CSng|CStr|Currency|CVar|CVErr|Date|Debug|Decimal|Declare|"
        "DefBool|DefByte|DefCur|DefDate|DefDbl|DefDec|DefInt|DefLng|DefObj|DefSng|DefStr|DefVar|Dim|Do|Double|"
        "Each|Else|ElseIf|Empty|End|Enum|Eqv|Erase|Error|Event|Exit|Explicit|False|For|Friend|Function|Get|"
        "Global|GoSub|GoTo|If|Imp|Implements|In|Input|Integer|Is|LBound|Len(?!\\()|Let|Lib|Like|Line|Local|"
        "Lock|Long|Loop|LSet|Me|Mid|Mod|Name|New|Next|Not|Nothing|Null|Object|On|Open|Option|Option Base|"
        "Option Compare Binary|Option Compare|Option Explicit|Option Private|Optional|Or|Output|ParamArray|"
        "Preserve|Print|Private|Property|Public|Put|RaiseEvent|Random|Read|ReDim|Resume|Return|RSet|Seek|"
        "Select|Set|Single|Spc|Static|Step|Stop|String(?!\\()|Sub|Tab|Then|To|True|Type|UBound|Unlock|Until|"
        "Variant|Wend|While|With|WithEvents|Write|Xor)\\b");
}

QString KeywordPatterns::vbNetKeywords()
{
    return QStringLiteral(
        "\\b(AddHandler|AddressOf|Alias|And|AndAlso|Ansi|As|Assembly|Auto|Boolean|ByRef|Byte|ByVal|Call|Case|"
        "Catch|CBool|CByte|CChar|CDate|CDbl|CDec|Char|CInt|Class|CLng|CObj|Const|CShort|CSng|CStr|CType|Date|"
        "Decimal|Declare|Default|Delegate|Dim|DirectCast|Do|Double|Each|Else|ElseIf|End|Enum|Erase|Error|Event|"
        "Exit|ExternalSource|False|Finally|For|Friend|Function|Get|GetType|Global|GoTo|Handles|If|Implements|"
        "Imports|In|Inherits|Integer|Interface|Is|Lib|Like|Long|Loop|Me|Mod|Module|MustInherit|MustOverride|"
        "MyBase|MyClass|Namespace|Narrowing|New|Next|Not|Nothing|NotInheritable|NotOverridable|Object|Of|On|"
        "Option|Optional|Or|OrElse|Overloads|Overridable|Overrides|ParamArray|Partial|Preserve|Private|"
        "Property|Protected|Public|RaiseEvent|ReadOnly|ReDim|Region|RemoveHandler|Resume|Return|Select|Set|"
        "Shadows|Shared|Short|Single|Static|Step|Stop|String|Structure|Sub|SyncLock|Then|Throw|To|True|Try|"
        "TryCast|TypeOf|Unicode|Until|Using|When|While|Widening|With|WithEvents|WriteOnly|Xor)\\b");
}

QString KeywordPatterns::stringTableEntry(int id)
{
    QFile entry(QStringLiteral(":/strings/%1").arg(id));
    if (!entry.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromLatin1(entry.readAll()).trimmed();
}

QString KeywordPatterns::properCase(const QString &text)
{
    QString result = text;
    bool wordStart = true;
    for (QChar &c : result) {
        const char16_t u = c.unicode();
        if (u == u' ' || u == u'\t' || u == u'\n' || u == u'\v' || u == u'\f' || u == u'\r' || u == 0) {
            wordStart = true;
            continue;
        }
        c = wordStart ? c.toUpper() : c.toLower();
        wordStart = false;
    }
    return result;
}

} // namespace kvrtb
