#include "CommandArguments.h"

namespace CommandArguments {

bool isCommand(const QStringList &arguments)
{
    if (arguments.size() < 2)
        return false;
    const QString first = arguments.at(1);
    static const QStringList informational{QStringLiteral("--help"), QStringLiteral("-h"),
                                           QStringLiteral("--version"), QStringLiteral("-v")};
    // Anything else that starts with '-' is for the tray program or for Qt.
    return !first.startsWith(u'-') || informational.contains(first);
}

std::optional<QString> unknownTrayOption(const QStringList &arguments)
{
    // Qt's documented options for any GUI program, with or without a value.
    static const QStringList withValue{QStringLiteral("platform"),
                                       QStringLiteral("platformpluginpath"),
                                       QStringLiteral("platformtheme"),
                                       QStringLiteral("plugin"),
                                       QStringLiteral("qwindowgeometry"),
                                       QStringLiteral("qwindowicon"),
                                       QStringLiteral("qwindowtitle"),
                                       QStringLiteral("geometry"),
                                       QStringLiteral("title"),
                                       QStringLiteral("display"),
                                       QStringLiteral("name"),
                                       QStringLiteral("session"),
                                       QStringLiteral("style"),
                                       QStringLiteral("stylesheet"),
                                       QStringLiteral("qmljsdebugger")};
    static const QStringList withoutValue{QStringLiteral("reverse"), QStringLiteral("widgetcount"),
                                          QStringLiteral("nograb"), QStringLiteral("dograb"),
                                          QStringLiteral("sync")};
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        // --gapplication-service: started by the bus for the desktop entry's activation.
        if (argument == u"--settings" || argument == u"--panel" ||
            argument == u"--gapplication-service")
            continue;
        // Qt takes its options after one dash or two, the value after '=' or
        // as the next argument.
        QStringView name(argument);
        if (!name.startsWith(u'-'))
            return argument;
        name = name.sliced(name.startsWith(u"--") ? 2 : 1);
        const qsizetype equals = name.indexOf(u'=');
        const bool hasValue = equals >= 0;
        if (hasValue)
            name = name.first(equals);
        if (withValue.contains(name)) {
            if (!hasValue && ++i >= arguments.size())
                return argument;
        } else if (hasValue || !withoutValue.contains(name)) {
            return argument;
        }
    }
    return std::nullopt;
}

} // namespace CommandArguments
