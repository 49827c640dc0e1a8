// SPDX-License-Identifier: GPL-3.0-or-later
#include "LoggingSystem.h"

#include "StreamLogHandler.h"

#include <QtGlobal>
#include <mutex>

namespace LoggingSystem {
namespace {
std::mutex factoryMutex;
Factory installedFactory;
bool bootstrapped = false;
} // namespace

void bootstrap(Factory factory)
{
    std::lock_guard lock(factoryMutex);
    if (bootstrapped)
        qFatal("logging system can only be initialized once per process.");
    bootstrapped = true;
    installedFactory = std::move(factory);
}

bool isBootstrapped()
{
    std::lock_guard lock(factoryMutex);
    return bootstrapped;
}

std::unique_ptr<LogHandler> makeHandler(const QString& label)
{
    std::lock_guard lock(factoryMutex);
    if (installedFactory)
        return installedFactory(label);
    return std::make_unique<StreamLogHandler>(StreamLogHandler::standardOutput(label));
}

} // namespace LoggingSystem
