// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LogHandler.h"

#include <functional>
#include <memory>

// Chooses, once per process, how loggers make their handlers.
namespace LoggingSystem {

using Factory = std::function<std::unique_ptr<LogHandler>(const QString& label)>;

// Installs the factory. A second call is a programming error and ends the process.
void bootstrap(Factory factory);

// Whether a factory was installed.
bool isBootstrapped();

// A handler for a new logger: the bootstrapped factory's, or a standard-output stream handler.
std::unique_ptr<LogHandler> makeHandler(const QString& label);

} // namespace LoggingSystem
