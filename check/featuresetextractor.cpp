#include "check/featuresetextractor.h"

#include <QFileInfo>

bool FeatureSetExtractor::setFile(const QString &path)
{
    if (!QFileInfo::exists(path))
        return false;
    m_path = path;
    return true;
}
