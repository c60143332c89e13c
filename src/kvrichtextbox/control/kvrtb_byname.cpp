// The by-name forms of the members whose optional arguments are pointers in C++: the same
// members with every argument given, the optional ones by reference.

#include "control/kvrtb.h"

namespace kvrtb {

void KvRTB::LoadFile(const QString &bstrFilename, kvrtb::QFileType vFileType, bool &TXTLinks, bool &OpenSuccess)
{
    LoadFile(bstrFilename, vFileType, &TXTLinks, &OpenSuccess);
}

QString KvRTB::CommonDialogFileOpen(QString &DefaultDirectory, QString &CustomFilter, bool &TextWLinks,
                                    short &ShowFilterIndex, short &FindexRet, short &MyErr, bool &OpenSuccess,
                                    QString &Title)
{
    return CommonDialogFileOpen(&DefaultDirectory, &CustomFilter, &TextWLinks, &ShowFilterIndex, &FindexRet, &MyErr,
                                &OpenSuccess, &Title);
}

QString KvRTB::CommonDialogFileSave(QString &DefaultDirectory, QString &FileNameSTR, bool &PromptOverWrite,
                                    QString &CustomFilter, short &ShowFilterIndex, short &FindexRet, short &MyErr,
                                    QString &Title, bool &SaveSuccess)
{
    return CommonDialogFileSave(&DefaultDirectory, &FileNameSTR, &PromptOverWrite, &CustomFilter, &ShowFilterIndex,
                                &FindexRet, &MyErr, &Title, &SaveSuccess);
}

void KvRTB::OpenDecryptedFile(QString &MyFileName, short &MyIndex, bool &TextWLinks, bool &OpenSuccess, short &MyErr)
{
    OpenDecryptedFile(MyFileName, MyIndex, &TextWLinks, &OpenSuccess, &MyErr);
}

QString KvRTB::GetLineText(int &LineStart, int &LineLength)
{
    return GetLineText(&LineStart, &LineLength);
}

void KvRTB::GoToWebsite(const QString &MyWebSite, QString &MyErrorData)
{
    GoToWebsite(MyWebSite, &MyErrorData);
}

void KvRTB::GoToEmailClient(const QString &MyEmail, QString &MyErrorData)
{
    GoToEmailClient(MyEmail, &MyErrorData);
}

int KvRTB::CommonDialogPrint(short &MyErr)
{
    return CommonDialogPrint(&MyErr);
}

void KvRTB::CommonDialogFontSelect(short &MyErr)
{
    CommonDialogFontSelect(&MyErr);
}

uint KvRTB::CommonDialogColor(bool &UserCancelQ, bool UseOrigONCancel, uint MyOrgigColor, short &MyErr)
{
    return CommonDialogColor(UserCancelQ, UseOrigONCancel, MyOrgigColor, &MyErr);
}

uint KvRTB::CommonDialogFontColor(const QVariant &MyOrgigColor, short &MyErr)
{
    return CommonDialogFontColor(MyOrgigColor, &MyErr);
}

uint KvRTB::CommonDialogSelFontColor(const QVariant &CurrentColor, short &MyErr)
{
    return CommonDialogSelFontColor(CurrentColor, &MyErr);
}

uint KvRTB::CommonDialogSelColor(const QVariant &CurrentColor, short &MyErr)
{
    return CommonDialogSelColor(CurrentColor, &MyErr);
}

} // namespace kvrtb
