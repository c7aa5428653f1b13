#include "ZoneInfoIndex.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

// The n-th blank-separated field of a line, or empty.
QByteArrayView field(QByteArrayView line, int n)
{
    qsizetype at = 0;
    for (int i = 0;; ++i) {
        while (at < line.size() && (line[at] == ' ' || line[at] == '\t'))
            ++at;
        qsizetype end = at;
        while (end < line.size() && line[end] != ' ' && line[end] != '\t' && line[end] != '\r')
            ++end;
        if (i == n || at == end)
            return line.sliced(at, end - at);
        at = end;
    }
}

bool readTzdataZi(const QString &path, ZoneInfoIndex &index)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    // Mapped and scanned in place: this runs on every start of the command
    // line, and reading it a line at a time cost more than all the rest.
    QByteArray copy;
    QByteArrayView all;
    if (const uchar *mapped = file.size() > 0 ? file.map(0, file.size()) : nullptr) {
        all = QByteArrayView(mapped, file.size());
    } else {
        copy = file.readAll();
        all = copy;
    }
    QSet<QString> zones;
    for (qsizetype start = 0; start < all.size();) {
        qsizetype end = all.indexOf('\n', start);
        if (end < 0)
            end = all.size();
        const QByteArrayView line = all.sliced(start, end - start);
        start = end + 1;
        // Only "Z name ..." and "L target name" matter; rule lines and
        // zone continuation lines start with other letters or blanks.
        if (line.size() < 3 || line[1] != ' ' || (line[0] != 'Z' && line[0] != 'L'))
            continue;
        if (line[0] == 'Z') {
            if (const QByteArrayView name = field(line, 1); !name.isEmpty())
                zones.insert(QString::fromUtf8(name));
        } else if (const QByteArrayView name = field(line, 2); !name.isEmpty()) {
            index.links.insert(QString::fromUtf8(name), QString::fromUtf8(field(line, 1)));
        }
    }
    index.zones = QStringList(zones.cbegin(), zones.cend());
    return true;
}

bool isTzif(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.read(4) == "TZif";
}

// The name a symlink's target has inside the tree, or empty when it lies
// outside.
QString nameInTree(const QString &treeRoot, const QFileInfo &link)
{
    const QString target = QFileInfo(link.symLinkTarget()).canonicalFilePath();
    if (treeRoot.isEmpty() || !target.startsWith(treeRoot + u'/'))
        return {};
    return target.mid(treeRoot.size() + 1);
}

void walk(const QDir &root, const QString &treeRoot, const QString &prefix, QSet<QString> &zones,
          QHash<QString, QString> &links)
{
    // Directory symlinks are not followed, which keeps loops out.
    const QFileInfoList entries =
        root.entryInfoList(QDir::Dirs | QDir::Files | QDir::NoDotAndDotDot | QDir::Hidden);
    for (const QFileInfo &entry : entries) {
        const QString name = prefix + entry.fileName();
        if (entry.isDir()) {
            // posix/ and right/ repeat the whole tree under other rules.
            if (entry.isSymLink() || name == u"posix" || name == u"right")
                continue;
            walk(QDir(entry.filePath()), treeRoot, name + u'/', zones, links);
            continue;
        }
        if (name == u"localtime" || name == u"posixrules" || name.endsWith(u".tab") ||
            name.endsWith(u".zi") || !isTzif(entry.filePath()))
            continue;
        if (entry.isSymLink())
            links.insert(name, nameInTree(treeRoot, entry));
        else
            zones.insert(name);
    }
}

} // namespace

bool ZoneInfoIndex::contains(const QString &name) const
{
    return links.contains(name) || std::binary_search(zones.cbegin(), zones.cend(), name);
}

ZoneInfoIndex ZoneInfoIndex::read(const QString &directory)
{
    ZoneInfoIndex index;
    if (!readTzdataZi(directory + u"/tzdata.zi", index)) {
        QSet<QString> zones;
        walk(QDir(directory), QFileInfo(directory).canonicalFilePath(), QString(), zones,
             index.links);
        index.zones = QStringList(zones.cbegin(), zones.cend());
    }
    // QString's operator< compares UTF-16 code units; tz names are ASCII,
    // so that is code-point order.
    std::sort(index.zones.begin(), index.zones.end());
    return index;
}
