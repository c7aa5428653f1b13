#include "AutostartEntry.h"

namespace {

// Characters that make an Exec argument need quotes.
const QString reservedCharacters = QStringLiteral(" \t\n\"'\\><~|&;$*?#()`");

// The escapes of a desktop entry's string values.
QString escapeValue(const QString &value)
{
    QString escaped;
    for (const QChar c : value) {
        switch (c.unicode()) {
        case '\\':
            escaped += QStringLiteral("\\\\");
            break;
        case '\n':
            escaped += QStringLiteral("\\n");
            break;
        case '\t':
            escaped += QStringLiteral("\\t");
            break;
        case '\r':
            escaped += QStringLiteral("\\r");
            break;
        default:
            escaped += c;
        }
    }
    return escaped;
}

QString unescapeValue(const QString &value)
{
    QString plain;
    for (qsizetype i = 0; i < value.size(); ++i) {
        const QChar c = value.at(i);
        if (c != u'\\' || i + 1 == value.size()) {
            plain += c;
            continue;
        }
        switch (value.at(++i).unicode()) {
        case 's':
            plain += u' ';
            break;
        case 'n':
            plain += u'\n';
            break;
        case 't':
            plain += u'\t';
            break;
        case 'r':
            plain += u'\r';
            break;
        case '\\':
            plain += u'\\';
            break;
        default:
            plain += u'\\', plain += value.at(i);
        }
    }
    return plain;
}

} // namespace

namespace AutostartEntry {

QString contents(const QString &programPath)
{
    const QString exec = escapeValue(quoteArgument(programPath));
    // Plain `zonara` opens no window when it starts: only the tray item.
    return QStringLiteral("[Desktop Entry]\n"
                          "Type=Application\n"
                          "Name=Zonara\n"
                          "GenericName=World Clock\n"
                          "Comment=Keeps the times of your cities in the panel\n"
                          "Exec=%1\n"
                          "Icon=io.github.zonara.Zonara\n"
                          "Terminal=false\n"
                          "StartupNotify=false\n"
                          "X-GNOME-Autostart-enabled=true\n")
        .arg(exec);
}

QHash<QString, QString> read(const QString &text)
{
    QHash<QString, QString> keys;
    bool inEntry = false;
    for (const QString &rawLine : text.split(u'\n')) {
        const QString line = rawLine.trimmed();
        if (line.isEmpty() || line.startsWith(u'#'))
            continue;
        if (line.startsWith(u'[')) {
            inEntry = line == QStringLiteral("[Desktop Entry]");
            continue;
        }
        const qsizetype equals = line.indexOf(u'=');
        if (!inEntry || equals < 0)
            continue;
        const QString key = line.left(equals).trimmed();
        if (key.contains(u'['))
            continue; // a translation
        keys.insert(key, unescapeValue(line.mid(equals + 1).trimmed()));
    }
    return keys;
}

QString quoteArgument(const QString &argument)
{
    QString quoted = argument;
    // A literal percent sign is doubled, quoted or not: %f and friends are field codes.
    quoted.replace(u'%', QStringLiteral("%%"));
    const bool needsQuotes =
        argument.isEmpty() || std::any_of(argument.cbegin(), argument.cend(),
                                          [](QChar c) { return reservedCharacters.contains(c); });
    if (!needsQuotes)
        return quoted;
    QString inner;
    for (const QChar c : quoted) {
        if (c == u'"' || c == u'`' || c == u'$' || c == u'\\')
            inner += u'\\';
        inner += c;
    }
    return u'"' + inner + u'"';
}

QStringList splitExec(const QString &exec)
{
    QStringList arguments;
    QString current;
    bool inArgument = false;
    bool quoted = false;
    for (qsizetype i = 0; i < exec.size(); ++i) {
        const QChar c = exec.at(i);
        if (quoted) {
            if (c == u'"') {
                quoted = false;
            } else if (c == u'\\' && i + 1 < exec.size()) {
                current += exec.at(++i);
            } else {
                current += c;
            }
        } else if (c == u'"') {
            quoted = inArgument = true;
        } else if (c == u' ' || c == u'\t') {
            if (inArgument)
                arguments.append(current);
            current.clear();
            inArgument = false;
        } else {
            current += c;
            inArgument = true;
        }
    }
    if (quoted)
        return {};
    if (inArgument)
        arguments.append(current);
    // A doubled percent sign is a literal one, quoted or not.
    for (QString &argument : arguments)
        argument.replace(QStringLiteral("%%"), QStringLiteral("%"));
    return arguments;
}

} // namespace AutostartEntry
