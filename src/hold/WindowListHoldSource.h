// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "HoldSource.h"

class QSocketNotifier;
struct wl_display;
struct wl_registry;

// Holds while the active window of another program is full screen, as told by a Wayland
// compositor's list of every program's windows. This side keeps the Wayland connection of its
// own, read inside the event loop; a subclass speaks one compositor's protocol for the list.
class WindowListHoldSource : public HoldSource {
    Q_OBJECT

public:
    ~WindowListHoldSource() override;

    // Connects and reads the present windows; false without a compositor offering the list.
    bool start();

    QString reason() const override;

    // The protocol's name, for the log.
    virtual const char* protocol() const = 0;

    // Called by the registry's listener for each global the compositor offers.
    virtual void bind(wl_registry* registry, unsigned name, const char* interface, unsigned version) = 0;

protected:
    // `ownAppId`: the app id of our own windows (a break window is full screen and active too).
    explicit WindowListHoldSource(QString ownAppId, QObject* parent = nullptr);

    const QString& ownAppId() const { return m_ownAppId; }

    // True once bind() found the list; then listen() asks for it.
    virtual bool found() const = 0;
    virtual void listen() = 0;
    // Destroys the protocol's objects; the subclass's destructor calls it too.
    virtual void release() = 0;

private:
    void dispatch();
    void disconnect();

    QString m_ownAppId;
    wl_display* m_display = nullptr;
    wl_registry* m_registry = nullptr;
    QSocketNotifier* m_reader = nullptr;
};
