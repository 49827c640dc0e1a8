// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "DBusMenuTypes.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QHash>
#include <QObject>
#include <QSet>

class QTimer;
class StatusMenu;
class StatusMenuItem;

// The status menu as com.canonical.dbusmenu, the menu protocol panels read. An entry's id is its
// position in the menu counted from 1; id 0 is the root.
class DBusMenu : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version)
    Q_PROPERTY(QString TextDirection READ textDirection)
    Q_PROPERTY(QString Status READ status)

public:
    static constexpr char objectPath[] = "/MenuBar";

    explicit DBusMenu(StatusMenu& menu, QObject* parent = nullptr);

    // Puts the menu on the bus at objectPath; false (and nothing exported) when the path is taken.
    bool exportOn(QDBusConnection connection);

    uint version() const { return 3; }
    QString textDirection() const { return QStringLiteral("ltr"); }
    QString status() const { return QStringLiteral("normal"); }
    uint revision() const { return m_revision; }

    // An entry's properties as panels get them; all of them when `names` is empty.
    static QVariantMap properties(const StatusMenuItem& item, const QStringList& names = {});

public slots:
    Q_SCRIPTABLE uint GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                                DBusMenuLayoutItem& layout);
    Q_SCRIPTABLE DBusMenuItemPropertiesList GetGroupProperties(const QList<int>& ids,
                                                               const QStringList& propertyNames);
    Q_SCRIPTABLE QDBusVariant GetProperty(int id, const QString& name);
    // Returns at once; a click runs the entry's action afterwards, from the event loop, because
    // some panels wait inside this call and an action may open a window or end the program.
    Q_SCRIPTABLE void Event(int id, const QString& eventId, const QDBusVariant& data, uint timestamp);
    Q_SCRIPTABLE QList<int> EventGroup(const DBusMenuEventList& events);
    Q_SCRIPTABLE bool AboutToShow(int id);
    Q_SCRIPTABLE QList<int> AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors);

signals:
    Q_SCRIPTABLE void LayoutUpdated(uint revision, int parent);
    Q_SCRIPTABLE void ItemsPropertiesUpdated(const DBusMenuItemPropertiesList& updatedProps,
                                             const DBusMenuItemPropertyNamesList& removedProps);
    Q_SCRIPTABLE void ItemActivationRequested(int id, uint timestamp);

private:
    StatusMenuItem* itemWithId(int id) const;
    int idOf(const StatusMenuItem* item) const;
    DBusMenuLayoutItem layoutOf(int id, int depth, const QStringList& names) const;
    void refuseUnknownId(int id);
    // True (and an error sent to the caller) when a request asks for more than any menu needs.
    bool refuseTooLarge(qsizetype size);
    bool triggerLater(int id, const QString& eventId);
    void itemChanged(StatusMenuItem* item);
    void sendChangedItems();

    StatusMenu& m_menu;
    uint m_revision = 1;
    QSet<StatusMenuItem*> m_changed;
    // An entry keeps its id while it is in the menu, whatever comes or goes around it: panels
    // cache the layout and send back the ids they have.
    mutable QHash<const StatusMenuItem*, int> m_ids;
    mutable int m_lastId = 0;
    QHash<const StatusMenuItem*, QStringList> m_sentNames;
    QTimer* m_batch = nullptr;
};
