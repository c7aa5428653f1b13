#include "IsoInstant.h"

#include <QRegularExpression>

namespace IsoInstant {

std::optional<QDateTime> parse(const QString &text)
{
    static const QRegularExpression shape(QStringLiteral(
        R"(^\d{4}-\d{2}-\d{2}T\d{2}:\d{2}(:\d{2}(\.\d{1,3})?)?(Z|[+-]\d{2}:?\d{2})$)"));
    if (!shape.match(text).hasMatch())
        return std::nullopt;
    const QDateTime instant = QDateTime::fromString(text, Qt::ISODateWithMs);
    if (!instant.isValid())
        return std::nullopt;
    return instant;
}

} // namespace IsoInstant
