// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "StatusNotifierTypes.h"

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QObject>
#include <QPoint>

class QDBusServiceWatcher;
class StatusItem;

// The status item as a freedesktop StatusNotifierItem: the icon (or, for panels that draw no
// text, the icon with the minutes left as a badge), the countdown as XAyatanaLabel and tooltip,
// and the menu's object path. It registers with the panel's StatusNotifierWatcher, and again
// whenever a watcher appears, so a restarted panel gets the item back.
class StatusNotifierItem : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category)
    Q_PROPERTY(QString Id READ id)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(int WindowId READ windowId)
    Q_PROPERTY(QString IconThemePath READ iconThemePath)
    Q_PROPERTY(QString IconName READ iconName)
    Q_PROPERTY(SniIconPixmapList IconPixmap READ iconPixmap)
    Q_PROPERTY(QString OverlayIconName READ noName)
    Q_PROPERTY(SniIconPixmapList OverlayIconPixmap READ noPixmap)
    Q_PROPERTY(QString AttentionIconName READ noName)
    Q_PROPERTY(SniIconPixmapList AttentionIconPixmap READ noPixmap)
    Q_PROPERTY(QString AttentionMovieName READ noName)
    Q_PROPERTY(SniToolTip ToolTip READ toolTip)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
    Q_PROPERTY(QDBusObjectPath Menu READ menu)
    Q_PROPERTY(QString XAyatanaLabel READ label)
    Q_PROPERTY(QString XAyatanaLabelGuide READ labelGuide)

public:
    static constexpr char objectPath[] = "/StatusNotifierItem";
    static constexpr char watcherService[] = "org.kde.StatusNotifierWatcher";

    StatusNotifierItem(StatusItem& item, const QDBusConnection& connection, const QString& menuPath,
                       QObject* parent = nullptr);

    // Puts the item on the bus and registers it with the watcher now and whenever one appears.
    // False when the object path is taken.
    bool exportAndRegister();

    // A watcher owns its name on the bus; registration with it may still be under way.
    bool hasWatcher() const { return m_hasWatcher; }
    // A watcher has taken the item.
    bool isRegistered() const { return m_registered; }
    // The panel draws XAyatanaLabel, so the icon goes without the badge.
    bool hostDrawsLabel() const { return m_hostDrawsLabel; }

    QString category() const { return QStringLiteral("ApplicationStatus"); }
    QString id() const;
    QString title() const;
    QString status() const { return QStringLiteral("Active"); }
    int windowId() const { return 0; }
    QString iconThemePath() const;
    QString iconName() const { return m_iconName; }
    SniIconPixmapList iconPixmap() const { return m_iconPixmap; }
    QString noName() const { return {}; }
    SniIconPixmapList noPixmap() const { return {}; }
    SniToolTip toolTip() const;
    bool itemIsMenu() const { return true; }
    QDBusObjectPath menu() const { return m_menuPath; }
    QString label() const { return m_label; }
    QString labelGuide() const { return QStringLiteral("00:00"); }

    // The icon name panels look up in their theme (or in IconThemePath) for the plain icon.
    static QString themeIconName();

public slots:
    Q_SCRIPTABLE void Activate(int x, int y);
    Q_SCRIPTABLE void SecondaryActivate(int x, int y);
    Q_SCRIPTABLE void ContextMenu(int x, int y);
    Q_SCRIPTABLE void Scroll(int delta, const QString& orientation);
    Q_SCRIPTABLE void ProvideXdgActivationToken(const QString& token);

signals:
    Q_SCRIPTABLE void NewTitle();
    Q_SCRIPTABLE void NewIcon();
    Q_SCRIPTABLE void NewAttentionIcon();
    Q_SCRIPTABLE void NewOverlayIcon();
    Q_SCRIPTABLE void NewToolTip();
    Q_SCRIPTABLE void NewStatus(const QString& status);
    Q_SCRIPTABLE void XAyatanaNewLabel(const QString& label, const QString& guide);

    // A watcher took the item (at start or after a panel restart).
    void registered();
    // The watcher left the bus (the panel quit or crashed): nothing shows the item now.
    void watcherLost();
    // The panel asks for the menu to be shown by the program, at this point of the screen.
    void menuRequested(const QPoint& position);

private:
    void watcherAppeared(const QString& owner);
    void registerWith(const QString& owner);
    void titleChanged();
    void updateIcon();
    // The title, or the word for a countdown that stands still.
    QString labelText() const;

    StatusItem& m_item;
    QDBusConnection m_connection;
    QDBusObjectPath m_menuPath;
    QDBusServiceWatcher* m_watcher = nullptr;
    bool m_hasWatcher = false;
    bool m_registered = false;
    bool m_hostDrawsLabel = false;
    bool m_registrationErrorLogged = false;
    QString m_panelLogged;
    QString m_label;
    QString m_iconKey;
    QString m_iconName;
    SniIconPixmapList m_iconPixmap;
    QString m_toolTipText;
};
