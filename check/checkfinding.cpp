#include "check/checkfinding.h"

#include <QList>

#include <algorithm>

namespace {

bool isMarker(const QString &text, qsizetype at)
{
    return text.at(at) == u'%' && at + 1 < text.size() && text.at(at + 1) >= u'1' &&
           text.at(at + 1) <= u'9';
}

} // namespace

QString CheckFinding::field() const
{
    return place.field.isEmpty() ? QString(QLatin1String(definition->field)) : place.field;
}

QString CheckFinding::text() const
{
    const QString pattern = QString::fromUtf8(definition->text);
    QList<QChar> markers;
    for (qsizetype i = 0; i < pattern.size(); ++i)
        if (isMarker(pattern, i) && !markers.contains(pattern.at(i + 1)))
            markers.append(pattern.at(i + 1));
    std::sort(markers.begin(), markers.end());
    QString result;
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        const bool marker = isMarker(pattern, i);
        const qsizetype position = marker ? markers.indexOf(pattern.at(i + 1)) : arguments.size();
        if (position < arguments.size()) {
            result += arguments.at(position);
            ++i;
        } else {
            result += pattern.at(i);
        }
    }
    return result;
}
