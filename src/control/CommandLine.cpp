// SPDX-License-Identifier: GPL-3.0-or-later
#include "CommandLine.h"

#include "ControlService.h"
#include "cycle/CycleControl.h"
#include "history/HistoryStore.h"
#include "history/HistorySummary.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>

#include <cstdio>

namespace CommandLine {
namespace {

struct Command {
    const char* option;
    const char* method; // the bus method, or nullptr for --status
    const char* description;
};

// The order of --help.
const Command commands[] = {
    {"pause", "Pause", QT_TRANSLATE_NOOP("CommandLine", "Pause the work cycle, closing a break that is up.")},
    {"resume", "Resume", QT_TRANSLATE_NOOP("CommandLine", "Resume the work cycle with a fresh work period.")},
    {"toggle-pause", "TogglePause",
     QT_TRANSLATE_NOOP("CommandLine", "Pause when working, resume when paused.")},
    {"skip", "Skip", QT_TRANSLATE_NOOP("CommandLine", "End the break that is up, as its Skip button does.")},
    {"postpone", "Postpone",
     QT_TRANSLATE_NOOP("CommandLine",
                       "Postpone the coming or shown break by MINUTES (default: the setting), when "
                       "postponing is on in the settings.")},
    {"settings", "ShowSettings", QT_TRANSLATE_NOOP("CommandLine", "Open the settings window.")},
    {"status", nullptr,
     QT_TRANSLATE_NOOP("CommandLine",
                       "Print the state and the countdown: working 24:13, break 03:12, held +03:12, paused "
                       "or stopped.")},
    {"quit", "Quit", QT_TRANSLATE_NOOP("CommandLine", "Quit Lulltide.")},
};

const Command& settingsCommand = commands[5];
const Command& postponeCommand = commands[4];

// The command line's own connection: main() may go on to make the QApplication, whose
// default session bus must start afresh.
const QString connectionName = QStringLiteral("lulltide-command-line");

QString tr(const char* text)
{
    return QCoreApplication::translate("CommandLine", text);
}

void printLine(FILE* stream, const QString& text)
{
    std::fputs(qPrintable(text + u'\n'), stream);
    std::fflush(stream);
}

Outcome finished(int exitCode)
{
    return {exitCode, false};
}

Outcome usageError(const QString& what)
{
    printLine(stderr, what);
    printLine(stderr, tr("Try 'lulltide --help'."));
    return finished(UsageError);
}

QString helpText(const QCommandLineParser& parser)
{
    return parser.helpText() + u'\n' + tr("Exit status:") + u'\n' +
           QStringLiteral("  0  %1\n  1  %2\n  2  %3\n")
               .arg(tr("done"),
                    tr("Lulltide is not running or cannot be reached, or refused the request; or the history "
                       "file "
                       "cannot be read"),
                    tr("usage error: an unknown option, a stray argument or two options at once"));
}

// Qt takes X11 or Wayland from these; a platform named outright (offscreen, vnc) needs neither.
bool displayAvailable()
{
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        if (!qEnvironmentVariableIsEmpty(name))
            return true;
    }
    return qEnvironmentVariable("XDG_SESSION_TYPE") == QLatin1String("wayland");
}

// This process is to run Lulltide: only now may a GUI object be made.
Outcome launch(bool showSettings)
{
    if (!displayAvailable()) {
        printLine(stderr, tr("Lulltide is not running, and there is no display to start it on."));
        return finished(Failed);
    }
    return {std::nullopt, showSettings};
}

QDBusMessage call(const QDBusConnection& bus, const QString& interface, const QString& method,
                  const QVariantList& arguments = {})
{
    QDBusMessage message = QDBusMessage::createMethodCall(ControlService::serviceName,
                                                          ControlService::objectPath, interface, method);
    message.setArguments(arguments);
    return bus.call(message, QDBus::Block, 10000);
}

bool isSilence(const QDBusMessage& reply)
{
    static const QStringList silence{QStringLiteral("org.freedesktop.DBus.Error.NoReply"),
                                     QStringLiteral("org.freedesktop.DBus.Error.Timeout"),
                                     QStringLiteral("org.freedesktop.DBus.Error.TimedOut"),
                                     QStringLiteral("org.freedesktop.DBus.Error.Disconnected")};
    return silence.contains(reply.errorName());
}

bool isGone(const QDBusMessage& reply)
{
    return reply.errorName() == QLatin1String("org.freedesktop.DBus.Error.ServiceUnknown") ||
           reply.errorName() == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner");
}

// Whoever holds the name, asked for Lulltide's state.
struct Holder {
    enum Kind { Lulltide, Silent, Gone, Other } kind = Other;
    QVariantMap state;
    QString error;
};

Holder askHolder(const QDBusConnection& bus)
{
    const QDBusMessage reply = call(bus, QStringLiteral("org.freedesktop.DBus.Properties"),
                                    QStringLiteral("GetAll"), {ControlService::interfaceName});
    if (reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty()) {
        const QVariantMap state = qdbus_cast<QVariantMap>(reply.arguments().constFirst());
        if (state.contains(QStringLiteral("Working")))
            return {Holder::Lulltide, state, {}};
        return {Holder::Other, {}, {}};
    }
    if (isSilence(reply))
        return {Holder::Silent, {}, reply.errorMessage()};
    if (isGone(reply))
        return {Holder::Gone, {}, {}};
    // An answer, but not ours: no Lulltide object behind the name.
    return {Holder::Other, {}, reply.errorMessage()};
}

int printStatus(const QVariantMap& state)
{
    const QString line = state.value(QStringLiteral("Status")).toString();
    if (!line.isEmpty()) {
        printLine(stdout, line);
        return Done;
    }
    CycleControl::Status status;
    status.working = state.value(QStringLiteral("Working")).toBool();
    status.manualPause = state.value(QStringLiteral("ManualPause")).toBool();
    status.inBreak = state.value(QStringLiteral("InBreak")).toBool();
    status.workTimeString = state.value(QStringLiteral("WorkTimeString")).toString();
    status.breakTimeString = state.value(QStringLiteral("BreakTimeString")).toString();
    printLine(stdout, CycleControl::statusLine(status));
    return Done;
}

int send(const QDBusConnection& bus, const Command& command, const QVariantList& arguments = {})
{
    const QDBusMessage reply =
        call(bus, ControlService::interfaceName, QString::fromLatin1(command.method), arguments);
    if (reply.type() == QDBusMessage::ReplyMessage)
        return Done;
    if (reply.errorName() == ControlService::cannotSkipError)
        printLine(stderr, tr("This break cannot be skipped: long breaks are forced."));
    else if (reply.errorName() == ControlService::cannotPostponeError)
        printLine(stderr, reply.errorMessage());
    else
        printLine(stderr, tr("Lulltide did not answer: %1").arg(reply.errorMessage()));
    return Failed;
}

// Hands `command` to whoever holds the name; a null command is a plain launch, which asks
// the running Lulltide to show its settings, as single-instance desktop programs do.
int talkToHolder(const QDBusConnection& bus, const Command* command, const QVariantList& arguments = {})
{
    const bool launching = !command || command == &settingsCommand;
    const Holder holder = askHolder(bus);
    switch (holder.kind) {
    case Holder::Lulltide:
        break;
    case Holder::Silent:
        printLine(stderr, tr("Lulltide did not answer: %1").arg(holder.error));
        return Failed;
    case Holder::Gone:
        printLine(stderr, tr("Lulltide is not running."));
        return Failed;
    case Holder::Other:
        printLine(stderr, (launching ? tr("Lulltide cannot start: another program holds the name %1 "
                                          "on the session bus.")
                                     : tr("Lulltide cannot be reached: another program holds the name %1 "
                                          "on the session bus."))
                              .arg(ControlService::serviceName));
        return Failed;
    }
    if (!command) {
        printLine(stdout, tr("Lulltide is already running."));
        return send(bus, settingsCommand);
    }
    if (!command->method)
        return printStatus(holder.state);
    return send(bus, *command, arguments);
}

// "--postpone=10" reads as "--postpone 10", "--history=30" as "--history 30": the number is an
// optional argument of the option.
QStringList withOptionalNumbersApart(QStringList arguments)
{
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        if (arguments.at(i) == QLatin1String("--"))
            break;
        for (const QString& option : {QStringLiteral("--postpone="), QStringLiteral("--history=")}) {
            if (arguments.at(i).startsWith(option)) {
                const QString number = arguments.at(i).mid(option.size());
                arguments[i] = option.chopped(1);
                arguments.insert(i + 1, number);
            }
        }
    }
    return arguments;
}

// The history is read from its file: no bus, no display, nothing running needed. Nothing is
// logged: standard output is the table or the CSV alone.
bool historyReadable(const HistoryStore& store, const QString& error)
{
    if (error.isEmpty())
        return true;
    printLine(stderr, tr("Cannot read the history file %1: %2.").arg(store.path(), error));
    return false;
}

int printHistory(int days)
{
    const HistoryStore store;
    QString error;
    const QList<HistorySummary::Day> summary = HistorySummary::lastDays(store, days, &error);
    if (!historyReadable(store, error))
        return Failed;
    std::fputs(qPrintable(HistorySummary::table(summary)), stdout);
    return Done;
}

// A field as spreadsheets read it; control characters (a terminal's escape sequences among
// them) become spaces.
QString csvField(QString text)
{
    // A spreadsheet runs a cell that begins so as a formula: the apostrophe makes it text.
    static const QString formulaStarts = QStringLiteral("=+-@\t\r");
    if (!text.isEmpty() && formulaStarts.contains(text.front()))
        text.prepend(u'\'');
    for (QChar& c : text) {
        if (c.category() == QChar::Other_Control)
            c = u' ';
    }
    if (!text.contains(u',') && !text.contains(u'"'))
        return text;
    return u'"' + text.replace(u'"', QStringLiteral("\"\"")) + u'"';
}

int printHistoryCsv()
{
    const HistoryStore store;
    QString error;
    const QList<HistoryStore::Event> events = store.read(QDate(1970, 1, 1), QDate(9999, 12, 31), &error);
    if (!historyReadable(store, error))
        return Failed;
    std::fputs("utc,local_date,kind,break_kind,seconds,detail\n", stdout);
    for (const HistoryStore::Event& event : events) {
        const QStringList fields{
            event.utc.toString(Qt::ISODateWithMs),  event.localDate, event.kind, event.breakKind,
            QString::number(event.seconds, 'f', 3), event.detail};
        QStringList quoted;
        for (const QString& field : fields)
            quoted << csvField(field);
        std::fputs(qPrintable(quoted.join(u',') + u'\n'), stdout);
    }
    std::fflush(stdout);
    return Done;
}

// MINUTES of --postpone: a whole number from 1 to the longest postpone.
std::optional<uint> postponeMinutes(const QString& text)
{
    bool ok = false;
    const uint minutes = text.trimmed().toUInt(&ok);
    if (!ok || minutes == 0 || minutes > ControlService::maxPostponeMinutes)
        return std::nullopt;
    return minutes;
}

// The command line's connection, let go when the reading is over.
struct ClientBus {
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName);
    ~ClientBus() { QDBusConnection::disconnectFromBus(connectionName); }
};

} // namespace

std::optional<Outcome> plainLaunch(const QStringList& arguments)
{
    const QStringList options = arguments.mid(1);
    if (!displayAvailable())
        return std::nullopt;
    if (options.isEmpty())
        return Outcome{};
    if (options == QStringList{QStringLiteral("--settings")})
        return Outcome{std::nullopt, true};
    return std::nullopt;
}

Outcome read()
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        tr("Reminds you to take breaks from the screen. Without options it starts "
           "Lulltide; the options control the running Lulltide."));
    // Qt's own help option would offer --help-all for Qt's options of a GUI application,
    // which this command line does not take.
    const QCommandLineOption help(
        {QStringLiteral("h"), QStringLiteral("help")},
        QCoreApplication::translate("QCommandLineParser", "Displays help on commandline options."));
    parser.addOption(help);
    const QCommandLineOption version = parser.addVersionOption();
    for (const Command& command : commands)
        parser.addOption(QCommandLineOption(QString::fromLatin1(command.option), tr(command.description)));
    const QCommandLineOption history(
        QStringLiteral("history"),
        tr("Print the breaks of the last DAYS days (default 7) from the history file, one line a day."));
    const QCommandLineOption historyCsv(
        QStringLiteral("history-csv"),
        tr("Write every event of the history file as CSV to standard output."));
    parser.addOption(history);
    parser.addOption(historyCsv);

    if (!parser.parse(withOptionalNumbersApart(QCoreApplication::arguments())))
        return usageError(parser.errorText());
    if (parser.isSet(help)) {
        std::fputs(qPrintable(helpText(parser)), stdout);
        return finished(Done);
    }
    if (parser.isSet(version)) {
        printLine(stdout,
                  QCoreApplication::applicationName() + u' ' + QCoreApplication::applicationVersion());
        return finished(Done);
    }
    QStringList positional = parser.positionalArguments();
    const int historyOptions = int(parser.isSet(history)) + int(parser.isSet(historyCsv));
    if (historyOptions > 0) {
        const bool another =
            std::any_of(std::begin(commands), std::end(commands), [&parser](const Command& command) {
                return parser.isSet(QString::fromLatin1(command.option));
            });
        if (another || historyOptions > 1)
            return usageError(tr("Give one option at a time."));
        if (parser.isSet(historyCsv)) {
            if (!positional.isEmpty())
                return usageError(tr("Unexpected argument '%1'.").arg(positional.constFirst()));
            return finished(printHistoryCsv());
        }
        int days = 7;
        if (!positional.isEmpty()) {
            bool ok = false;
            days = positional.takeFirst().trimmed().toInt(&ok);
            if (!ok || days < 1 || days > 366)
                return usageError(tr("DAYS of --history must be a whole number from 1 to 366."));
        }
        if (!positional.isEmpty())
            return usageError(tr("Unexpected argument '%1'.").arg(positional.constFirst()));
        return finished(printHistory(days));
    }
    QVariantList arguments;
    if (parser.isSet(QString::fromLatin1(postponeCommand.option))) {
        uint minutes = 0;
        if (!positional.isEmpty()) {
            const auto given = postponeMinutes(positional.takeFirst());
            if (!given)
                return usageError(tr("MINUTES of --postpone must be a whole number from 1 to %1.")
                                      .arg(ControlService::maxPostponeMinutes));
            minutes = *given;
        }
        arguments << QVariant::fromValue(minutes);
    }
    if (!positional.isEmpty())
        return usageError(tr("Unexpected argument '%1'.").arg(positional.constFirst()));

    const Command* requested = nullptr;
    for (const Command& command : commands) {
        if (!parser.isSet(QString::fromLatin1(command.option)))
            continue;
        if (requested)
            return usageError(
                tr("Give one option at a time: --%1 and --%2 were both given.")
                    .arg(QString::fromLatin1(requested->option), QString::fromLatin1(command.option)));
        requested = &command;
    }
    const bool launching = !requested || requested == &settingsCommand;

    const ClientBus client;
    if (!client.bus.isConnected()) {
        // Without a bus nobody can be asked: a launch runs alone (and says so in its log).
        if (launching)
            return launch(requested != nullptr);
        printLine(stderr, tr("Lulltide is not running: there is no D-Bus session bus to reach it."));
        return finished(Failed);
    }
    if (!client.bus.interface()->isServiceRegistered(ControlService::serviceName)) {
        if (launching)
            return launch(requested != nullptr);
        printLine(stderr, tr("Lulltide is not running."));
        return finished(Failed);
    }
    return finished(talkToHolder(client.bus, requested, arguments));
}

int handOver(const QDBusConnection& bus, bool showSettings)
{
    return talkToHolder(bus, showSettings ? &settingsCommand : nullptr);
}

} // namespace CommandLine
