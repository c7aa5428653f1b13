#pragma once

#include <QHashFunctions>
#include <QString>
#include <QUuid>

#include <optional>

// The city part of a time-zone identifier: the last non-empty "/" piece (the
// whole identifier when there is none), with "_" shown as a space. It names
// saved zones without a nickname, search results and suggestions alike.
QString cityPart(const QString &identifier);

// Text trimmed of white space and line breaks at both ends. Shared by every
// place that reads a nickname, so they all agree on what "blank" means.
QString trimmedText(const QString &text);

// One saved city of the user's list.
struct SavedZone
{
    QUuid id;
    QString identifier;
    std::optional<QString> customLabel;
    bool isPinned = false;

    // The nickname when it has something besides white space, otherwise the
    // city part of the identifier.
    QString displayName() const;

    friend bool operator==(const SavedZone &a, const SavedZone &b) = default;
};

size_t qHash(const SavedZone &zone, size_t seed = 0) noexcept;
