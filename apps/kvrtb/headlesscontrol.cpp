#include "headlesscontrol.h"

#include "commandregistry.h"

namespace kvrtb::cli {

bool HeadlessControl::load(const QString &path)
{
    const SurfaceFileType type = path.endsWith(QLatin1String(".rtf"), Qt::CaseInsensitive) ? SurfaceFileType::Rtf
                                                                                             : SurfaceFileType::Text;
    QString error;
    if (!core.surface().loadFile(path, type, &error)) {
        printErr(QStringLiteral("kvrtb: %1\n").arg(error));
        return false;
    }
    return true;
}

} // namespace kvrtb::cli
