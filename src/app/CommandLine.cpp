#include "CommandLine.h"

#include "AppControl.h"
#include "ControlService.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>

#include <cstdio>
#include <cstring>

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
    {"settings", "ShowSettings", QT_TRANSLATE_NOOP("CommandLine", "Open the settings window.")},
    {"status", nullptr,
     QT_TRANSLATE_NOOP("CommandLine",
                       "Print the state and the countdown: working 24:13, break 03:12, paused or stopped.")},
    {"quit", "Quit", QT_TRANSLATE_NOOP("CommandLine", "Quit Lulltide.")},
};

QString tr(const char* text)
{
    return QCoreApplication::translate("CommandLine", text);
}

void printLine(FILE* stream, const QString& text)
{
    std::fputs(qPrintable(text + u'\n'), stream);
    std::fflush(stream);
}

void addOptions(QCommandLineParser& parser)
{
    parser.setApplicationDescription(
        tr("Reminds you to take breaks from the screen. Without options it starts "
           "Lulltide; the options control the running Lulltide."));
    parser.addHelpOption();
    parser.addVersionOption();
    for (const Command& command : commands)
        parser.addOption(QCommandLineOption(QString::fromLatin1(command.option), tr(command.description)));
}

QDBusMessage call(const QDBusConnection& bus, const QString& interface, const QString& method,
                  const QVariantList& arguments = {})
{
    QDBusMessage message = QDBusMessage::createMethodCall(ControlService::serviceName,
                                                          ControlService::objectPath, interface, method);
    message.setArguments(arguments);
    return bus.call(message, QDBus::Block, 10000);
}

int printStatus(const QDBusConnection& bus)
{
    const QDBusMessage reply = call(bus, QStringLiteral("org.freedesktop.DBus.Properties"),
                                    QStringLiteral("GetAll"), {ControlService::interfaceName});
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
        printLine(stderr, tr("Lulltide did not answer: %1").arg(reply.errorMessage()));
        return 1;
    }
    const QVariantMap properties = qdbus_cast<QVariantMap>(reply.arguments().constFirst());
    AppControl::Status status;
    status.working = properties.value(QStringLiteral("Working")).toBool();
    status.manualPause = properties.value(QStringLiteral("ManualPause")).toBool();
    status.inBreak = properties.value(QStringLiteral("InBreak")).toBool();
    status.workTimeString = properties.value(QStringLiteral("WorkTimeString")).toString();
    status.breakTimeString = properties.value(QStringLiteral("BreakTimeString")).toString();
    printLine(stdout, AppControl::statusLine(status));
    return 0;
}

} // namespace

bool isClientRequest(int argc, char* argv[])
{
    for (int i = 1; i < argc; ++i) {
        const char* argument = argv[i];
        for (const char* name : {"-h", "--help", "--help-all", "-v", "--version"}) {
            if (std::strcmp(argument, name) == 0)
                return true;
        }
        for (const Command& command : commands) {
            if (argument[0] == '-' && argument[1] == '-' && std::strcmp(argument + 2, command.option) == 0)
                return true;
        }
    }
    return false;
}

int runClient()
{
    QCommandLineParser parser;
    addOptions(parser);
    parser.process(QCoreApplication::arguments());

    const Command* requested = nullptr;
    for (const Command& command : commands) {
        if (!parser.isSet(QString::fromLatin1(command.option)))
            continue;
        if (requested) {
            printLine(stderr,
                      tr("Give one option at a time: --%1 and --%2 were both given.")
                          .arg(QString::fromLatin1(requested->option), QString::fromLatin1(command.option)));
            return 1;
        }
        requested = &command;
    }
    if (!requested) {
        printLine(stderr, tr("Nothing to do: see --help."));
        return 1;
    }

    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        printLine(stderr, tr("Lulltide is not running: there is no D-Bus session bus to reach it."));
        return 1;
    }
    if (!bus.interface()->isServiceRegistered(ControlService::serviceName)) {
        printLine(stderr, tr("Lulltide is not running."));
        return 1;
    }
    if (!requested->method)
        return printStatus(bus);

    const QDBusMessage reply =
        call(bus, ControlService::interfaceName, QString::fromLatin1(requested->method));
    if (reply.type() != QDBusMessage::ReplyMessage) {
        printLine(stderr, tr("Lulltide did not answer: %1").arg(reply.errorMessage()));
        return 1;
    }
    return 0;
}

void checkLaunchArguments()
{
    QCommandLineParser parser;
    addOptions(parser);
    parser.process(QCoreApplication::arguments());
    if (!parser.positionalArguments().isEmpty()) {
        printLine(stderr, tr("Unknown argument: %1").arg(parser.positionalArguments().constFirst()));
        std::exit(1);
    }
}

void sayAlreadyRunning()
{
    printLine(stdout, tr("Lulltide is already running."));
}

} // namespace CommandLine
