#include "SettingsPreferencesStore.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QLockFile>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSaveFile>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// QSettings decodes "@Variant(...)" values through QDataStream, which recurses
// into nested lists without bound. We never write one, so a file holding one
// (also spelled through an escape) is damaged and never reaches QSettings.
bool hasEncodedVariant(const QByteArray &bytes)
{
    static const QRegularExpression escapedAt(QStringLiteral(R"(\\(x0*40|0*100)$)"),
                                              QRegularExpression::CaseInsensitiveOption);
    const QByteArrayView needle("Variant(");
    for (qsizetype at = bytes.indexOf(needle); at >= 0; at = bytes.indexOf(needle, at + 1)) {
        if (at > 0 && bytes[at - 1] == '@')
            return true;
        const QString before = QString::fromLatin1(bytes.mid(qMax(0, at - 8), qMin(at, 8)));
        if (escapedAt.match(before).hasMatch())
            return true;
    }
    return false;
}

// Opens a regular file for reading, never blocking: a FIFO or device in its
// place would otherwise hang the open or the read.
bool openRegular(const QString &fileName, QFile &file)
{
    const int fd =
        ::open(QFile::encodeName(fileName).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return false;
    struct stat status = {};
    if (::fstat(fd, &status) != 0 || !S_ISREG(status.st_mode) ||
        !file.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(fd);
        return false;
    }
    return true;
}

// The file a save replaces: the preferences file, or the regular file its
// symlink names when the user owns it (dotfile managers link it). Replacing
// the link itself would cut it; writing through to a file of someone else's
// would let the link choose what gets overwritten.
std::optional<QString> replaceableFile(const QString &fileName, QString *error)
{
    const QFileInfo info(fileName);
    if (!info.isSymLink())
        return fileName;
    const QString target = info.canonicalFilePath();
    struct stat status = {};
    if (target.isEmpty() || ::stat(QFile::encodeName(target).constData(), &status) != 0 ||
        !S_ISREG(status.st_mode) || status.st_uid != ::geteuid()) {
        *error = QStringLiteral("%1 is a link to something other than a file of yours, so it is "
                                "left as it is")
                     .arg(fileName);
        return std::nullopt;
    }
    return target;
}

QString defaultFileName()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/zonara/zonara.conf");
}

} // namespace

SettingsPreferencesStore::SettingsPreferencesStore()
    : SettingsPreferencesStore(defaultFileName())
{}

SettingsPreferencesStore::SettingsPreferencesStore(const QString &fileName)
    : m_fileName(QFileInfo(fileName).absoluteFilePath())
{}

SettingsPreferencesStore::~SettingsPreferencesStore() = default;

std::optional<QByteArray> SettingsPreferencesStore::readBytes(const QString &key) const
{
    const QVariant stored = value(key);
    if (stored.typeId() != QMetaType::QByteArray)
        return std::nullopt;
    return stored.toByteArray();
}

std::optional<QString> SettingsPreferencesStore::readText(const QString &key) const
{
    const QVariant stored = value(key);
    // The INI format keeps no types: bytes come back tagged, plain values as text.
    if (stored.typeId() != QMetaType::QString)
        return std::nullopt;
    return stored.toString();
}

bool SettingsPreferencesStore::readBool(const QString &key) const
{
    const QVariant stored = value(key);
    if (stored.typeId() == QMetaType::Bool)
        return stored.toBool();
    if (stored.typeId() == QMetaType::QString)
        return stored.toString().compare(u"true", Qt::CaseInsensitive) == 0;
    return false;
}

void SettingsPreferencesStore::writeBytes(const QString &key, const QByteArray &value)
{
    write(key, value);
}

void SettingsPreferencesStore::writeText(const QString &key, const QString &value)
{
    write(key, value);
}

void SettingsPreferencesStore::writeBool(const QString &key, bool value)
{
    write(key, value);
}

void SettingsPreferencesStore::write(const QString &key, const QVariant &value)
{
    if (m_inEdit)
        m_changes.insert(key, value);
    else
        edit([&] { m_changes.insert(key, value); });
}

QVariant SettingsPreferencesStore::value(const QString &key) const
{
    if (m_inEdit) {
        const auto changed = m_changes.constFind(key);
        if (changed != m_changes.cend())
            return *changed;
        // The file is locked and was read when the edit began.
        return m_snapshot.values.value(key);
    }
    return refresh().values.value(key);
}

const SettingsPreferencesStore::Snapshot &SettingsPreferencesStore::refresh() const
{
    const QFileInfo info(m_fileName);
    if (!info.exists() && !info.isSymLink()) {
        m_snapshot = {};
        return m_snapshot;
    }
    QFile file;
    if (!openRegular(m_fileName, file)) {
        m_snapshot = {FileState::Inaccessible, {}, {}};
        return m_snapshot;
    }
    const QByteArray bytes = file.read(maximumFileSize + 1);
    if (bytes == m_snapshot.bytes && m_snapshot.state != FileState::Inaccessible &&
        m_snapshot.state != FileState::Missing)
        return m_snapshot;
    if (bytes.size() > maximumFileSize || hasEncodedVariant(bytes)) {
        m_snapshot = {FileState::Damaged, bytes, {}};
        return m_snapshot;
    }
    bool damaged = false;
    std::optional<QVariantMap> values = parse(bytes, &damaged);
    if (!values)
        m_snapshot = {FileState::Inaccessible, {}, {}};
    else
        m_snapshot = {damaged ? FileState::Damaged : FileState::Readable, bytes, *values};
    return m_snapshot;
}

QString SettingsPreferencesStore::workFile() const
{
    if (!m_workDirectory) {
        m_workDirectory = std::make_unique<QTemporaryDir>();
        if (!m_workDirectory->isValid())
            m_workDirectory.reset();
    }
    if (!m_workDirectory)
        return {};
    // A new name each time: QSettings caches what it read per file name.
    return m_workDirectory->filePath(QStringLiteral("%1.conf").arg(++m_workFiles));
}

std::optional<QVariantMap> SettingsPreferencesStore::parse(const QByteArray &bytes,
                                                           bool *damaged) const
{
    const QString name = workFile();
    QFile copy(name);
    if (name.isEmpty() || !copy.open(QIODevice::WriteOnly) || copy.write(bytes) != bytes.size())
        return std::nullopt;
    copy.close();
    QVariantMap values;
    {
        QSettings settings(name, QSettings::IniFormat);
        for (const QString &key : settings.allKeys())
            values.insert(key, settings.value(key));
        *damaged = settings.status() != QSettings::NoError;
    }
    QFile::remove(name);
    return values;
}

std::optional<QByteArray> SettingsPreferencesStore::serialise(const QVariantMap &values) const
{
    const QString name = workFile();
    if (name.isEmpty())
        return std::nullopt;
    bool written = false;
    {
        QSettings settings(name, QSettings::IniFormat);
        for (auto it = values.cbegin(); it != values.cend(); ++it)
            settings.setValue(it.key(), it.value());
        settings.sync();
        written = settings.status() == QSettings::NoError;
    }
    QFile file(name);
    std::optional<QByteArray> bytes;
    if (written && file.open(QIODevice::ReadOnly))
        bytes = file.readAll();
    file.close();
    QFile::remove(name);
    return bytes;
}

bool SettingsPreferencesStore::edit(const std::function<void()> &change)
{
    if (m_inEdit) {
        change();
        return true;
    }

    QString lockError;
    const QFileInfo info(m_fileName);
    QLockFile lock(m_fileName + QStringLiteral(".lock"));
    bool locked = QDir().mkpath(info.absolutePath());
    if (!locked) {
        lockError = QStringLiteral("cannot create the folder %1").arg(info.absolutePath());
    } else {
        const QDeadlineTimer deadline(lockTimeoutMs);
        while (!(locked = lock.tryLock(0))) {
            if (lock.error() != QLockFile::LockFailedError) {
                lockError = QStringLiteral("cannot create %1").arg(lock.fileName());
                break;
            }
            if (deadline.hasExpired()) {
                lockError =
                    QStringLiteral("%1 stayed locked by another process").arg(lock.fileName());
                break;
            }
            QThread::msleep(QRandomGenerator::global()->bounded(2, 12));
        }
    }

    refresh();
    m_inEdit = true;
    m_copyRequested = false;
    change();
    m_inEdit = false;
    const QVariantMap changes = std::exchange(m_changes, {});
    if (changes.isEmpty())
        return true;
    if (!locked) {
        m_saveError = lockError;
        return false;
    }
    return save(changes);
}

bool SettingsPreferencesStore::save(const QVariantMap &changes)
{
    const Snapshot now = m_snapshot;
    if (now.state == FileState::Inaccessible) {
        m_saveError =
            QStringLiteral("cannot read %1 as a file, so it is left as it is").arg(m_fileName);
        return false;
    }
    const std::optional<QString> target = replaceableFile(m_fileName, &m_saveError);
    if (!target)
        return false;
    const bool mustCopy =
        now.state == FileState::Damaged || (m_copyRequested && now.state == FileState::Readable);
    if (mustCopy && !keepCopy())
        return false;

    QVariantMap values = now.values;
    for (auto it = changes.cbegin(); it != changes.cend(); ++it)
        values.insert(it.key(), it.value());
    const std::optional<QByteArray> bytes = serialise(values);
    if (!bytes) {
        m_saveError = QStringLiteral("cannot write a temporary copy of %1").arg(m_fileName);
        return false;
    }
    if (bytes->size() > maximumFileSize) {
        m_saveError = QStringLiteral("%1 would grow past %2 KiB, so it is left as it is")
                          .arg(m_fileName)
                          .arg(maximumFileSize / 1024);
        return false;
    }
    // Nothing changed: the file, its time and its watchers are left alone.
    if (now.state == FileState::Readable && *bytes == now.bytes) {
        m_saveError.clear();
        return true;
    }
    QSaveFile file(*target);
    if (!file.open(QIODevice::WriteOnly) || file.write(*bytes) != bytes->size() || !file.commit()) {
        m_saveError = QStringLiteral("cannot write %1: %2").arg(m_fileName, file.errorString());
        return false;
    }
    if (now.state == FileState::Missing)
        QFile::setPermissions(m_fileName, QFile::ReadOwner | QFile::WriteOwner);
    m_snapshot = {FileState::Readable, *bytes, values};
    m_saveError.clear();
    return true;
}

bool SettingsPreferencesStore::keepCopy()
{
    QFile source;
    if (!openRegular(m_fileName, source)) {
        m_saveError = QStringLiteral("cannot read %1 to keep a copy of it").arg(m_fileName);
        return false;
    }
    const QByteArray bytes = source.readAll();
    const QString stem = m_fileName + QStringLiteral(".unreadable-") +
                         QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    QString name = stem;
    for (int n = 2; QFileInfo::exists(name); ++n)
        name = stem + QStringLiteral("-%1").arg(n);
    QSaveFile copy(name);
    if (!copy.open(QIODevice::WriteOnly) || copy.write(bytes) != bytes.size() || !copy.commit()) {
        m_saveError = QStringLiteral("cannot keep a copy of %1 in %2: %3")
                          .arg(m_fileName, name, copy.errorString());
        return false;
    }
    QFile::setPermissions(name, QFile::ReadOwner | QFile::WriteOwner);
    m_keptCopy = name;

    const QFileInfo info(m_fileName);
    QDir directory = info.absoluteDir();
    const QFileInfoList copies =
        directory.entryInfoList({info.fileName() + QStringLiteral(".unreadable-*")}, QDir::Files,
                                QDir::Time | QDir::Reversed);
    for (qsizetype i = 0; i + keptCopies < copies.size(); ++i)
        QFile::remove(copies.at(i).absoluteFilePath());
    return true;
}

void SettingsPreferencesStore::setOutsideChangeHandler(std::function<void()> handler)
{
    m_outsideChange = std::move(handler);
    if (!m_outsideChange) {
        m_watcher.reset();
        m_settle.reset();
        return;
    }
    if (!m_watcher) {
        m_watcher = std::make_unique<QFileSystemWatcher>();
        m_settle = std::make_unique<QTimer>();
        // Writers replace the file through a temporary one beside it; one
        // look after the burst of events is enough.
        m_settle->setSingleShot(true);
        m_settle->setInterval(50);
        QObject::connect(m_settle.get(), &QTimer::timeout, m_settle.get(),
                         [this] { checkForOutsideChange(); });
        const auto settle = [this] { m_settle->start(); };
        QObject::connect(m_watcher.get(), &QFileSystemWatcher::directoryChanged, m_settle.get(),
                         settle);
        QObject::connect(m_watcher.get(), &QFileSystemWatcher::fileChanged, m_settle.get(), settle);
        refresh();
    }
    watch();
}

void SettingsPreferencesStore::watch()
{
    const QString directory = QFileInfo(m_fileName).absolutePath();
    for (const QString &path : {directory, m_fileName}) {
        if (QFileInfo::exists(path) && !m_watcher->files().contains(path) &&
            !m_watcher->directories().contains(path))
            m_watcher->addPath(path);
    }
}

void SettingsPreferencesStore::checkForOutsideChange()
{
    watch();
    const Snapshot before = m_snapshot;
    const Snapshot &now = refresh();
    if ((now.bytes != before.bytes || now.state != before.state) && m_outsideChange)
        m_outsideChange();
}
