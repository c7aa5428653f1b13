#pragma once

#include "MenuBarFormat.h"
#include "SavedZone.h"
#include "ZoneSearchResult.h"

#include <QAbstractListModel>
#include <QDateTime>

// The rows of the add-city list: each result with the time there and whether
// it is already saved. An already saved result is disabled.
class ZoneResultsModel final : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role {
        TitleRole = Qt::UserRole + 1,
        SubtitleRole,
        IdentifierRole,
        TimeRole, // empty when the zone is unknown or already added
        AlreadyAddedRole,
    };

    explicit ZoneResultsModel(QObject *parent = nullptr);

    void setResults(const QList<ZoneSearchResult> &results);
    const QList<ZoneSearchResult> &results() const { return m_results; }
    // What the rows depend on besides the results; changes update the rows
    // in place.
    void setSavedZones(const QList<SavedZone> &zones);
    void setTime(MenuBarFormat format, const QDateTime &now);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

private:
    void rowsChanged();

    QList<ZoneSearchResult> m_results;
    QList<SavedZone> m_savedZones;
    MenuBarFormat m_format = MenuBarFormat::labelTime24;
    QDateTime m_now;
};
