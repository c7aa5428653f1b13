#include "ZoneResultsModel.h"

#include "MenuBarFormatter.h"
#include "TimeZoneDatabase.h"
#include "ZoneChoices.h"

ZoneResultsModel::ZoneResultsModel(QObject *parent)
    : QAbstractListModel(parent)
{}

void ZoneResultsModel::setResults(const QList<ZoneSearchResult> &results)
{
    beginResetModel();
    m_results = results;
    endResetModel();
}

void ZoneResultsModel::setSavedZones(const QList<SavedZone> &zones)
{
    m_savedZones = zones;
    rowsChanged();
}

void ZoneResultsModel::setTime(MenuBarFormat format, const QDateTime &now)
{
    m_format = format;
    m_now = now;
    rowsChanged();
}

void ZoneResultsModel::rowsChanged()
{
    if (!m_results.isEmpty())
        Q_EMIT dataChanged(index(0), index(int(m_results.size()) - 1));
}

int ZoneResultsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_results.size());
}

QVariant ZoneResultsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_results.size())
        return {};
    const ZoneSearchResult &result = m_results.at(index.row());
    const bool added = ZoneChoices::isAlreadyAdded(result, m_savedZones);
    switch (role) {
    case Qt::DisplayRole:
    case TitleRole:
        return result.title;
    case SubtitleRole:
        return result.subtitle;
    case IdentifierRole:
        return result.identifier;
    case AlreadyAddedRole:
        return added;
    case TimeRole: {
        if (added)
            return QString();
        const std::optional<QTimeZone> zone = TimeZoneDatabase::resolve(result.identifier);
        return zone ? MenuBarFormatter::timeString(m_format, m_now, *zone) : QString();
    }
    case Qt::AccessibleTextRole:
        return QString(added ? result.title + QStringLiteral(", already added")
                             : QStringLiteral("Add ") + result.title);
    case Qt::AccessibleDescriptionRole:
        return result.subtitle;
    case Qt::ToolTipRole:
        return result.subtitle;
    default:
        return {};
    }
}

Qt::ItemFlags ZoneResultsModel::flags(const QModelIndex &index) const
{
    if (!index.isValid() || index.row() >= m_results.size())
        return Qt::NoItemFlags;
    if (ZoneChoices::isAlreadyAdded(m_results.at(index.row()), m_savedZones))
        return Qt::ItemNeverHasChildren;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
}
