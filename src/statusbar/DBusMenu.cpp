// SPDX-License-Identifier: GPL-3.0-or-later
#include "DBusMenu.h"

#include "StatusMenu.h"
#include "StatusMenuItem.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QTimer>

namespace {

const QString unknownIdError = QStringLiteral("com.canonical.dbusmenu.Error.UnknownId");

// The menu has ten ids and a handful of property names: a panel never needs more in one call.
// Anything the panel sends is otherwise unbounded, and an answer per requested id could grow
// past what the bus carries, which makes the bus drop our connection.
constexpr qsizetype maxRequestSize = 1000;

// A name is echoed in an error text; a panel's typo is short.
QString shortened(const QString& name)
{
    return name.size() <= 64 ? name : name.left(64) + QStringLiteral("...");
}

DBusMenuShortcut shortcutOf(const QString& key)
{
    // Key names as X keysyms, which the panels' toolkits parse.
    QString name = key;
    if (key == QLatin1String(","))
        name = QStringLiteral("comma");
    else if (key == QLatin1String("+"))
        name = QStringLiteral("plus");
    else if (key == QLatin1String("-"))
        name = QStringLiteral("minus");
    return {QStringList{QStringLiteral("Control"), name}};
}

} // namespace

DBusMenu::DBusMenu(StatusMenu& menu, QObject* parent) : QObject(parent), m_menu(menu)
{
    DBusMenuTypes::registerMetaTypes();

    // The pause entry changes its image and its title one after the other: panels get both
    // in one signal.
    m_batch = new QTimer(this);
    m_batch->setSingleShot(true);
    m_batch->setInterval(0);
    connect(m_batch, &QTimer::timeout, this, &DBusMenu::sendChangedItems);

    connect(&m_menu, &StatusMenu::itemChanged, this, &DBusMenu::itemChanged);
    // The entries there at start are numbered in their order, 1 to n.
    for (const StatusMenuItem* item : m_menu.items())
        idOf(item);
    connect(&m_menu, &StatusMenu::layoutChanged, this, [this] {
        // An entry that went takes its id along: a panel's click on it finds nothing.
        for (auto it = m_ids.begin(); it != m_ids.end();) {
            if (m_menu.items().contains(const_cast<StatusMenuItem*>(it.key())))
                ++it;
            else
                it = m_ids.erase(it);
        }
        ++m_revision;
        m_changed.clear();
        emit LayoutUpdated(m_revision, 0);
    });
}

bool DBusMenu::exportOn(QDBusConnection connection)
{
    return connection.registerObject(QLatin1String(objectPath), this,
                                     QDBusConnection::ExportScriptableContents |
                                         QDBusConnection::ExportAllProperties);
}

QVariantMap DBusMenu::properties(const StatusMenuItem& item, const QStringList& names)
{
    QVariantMap all;
    if (item.isSeparator()) {
        all.insert(QStringLiteral("type"), QStringLiteral("separator"));
    } else {
        // An underscore marks a mnemonic; a literal one is written twice.
        QString label = item.title();
        all.insert(QStringLiteral("label"), label.replace(u'_', QStringLiteral("__")));
        all.insert(QStringLiteral("enabled"), item.isEnabled());
        if (!item.iconName().isEmpty())
            all.insert(QStringLiteral("icon-name"), item.iconName());
        if (!item.accessibleDescription().isEmpty())
            all.insert(QStringLiteral("accessible-desc"), item.accessibleDescription());
        if (!item.keyEquivalent().isEmpty())
            all.insert(QStringLiteral("shortcut"), QVariant::fromValue(shortcutOf(item.keyEquivalent())));
    }
    all.insert(QStringLiteral("visible"), true);
    if (names.isEmpty())
        return all;
    QVariantMap chosen;
    for (const QString& name : names) {
        if (all.contains(name))
            chosen.insert(name, all.value(name));
    }
    return chosen;
}

StatusMenuItem* DBusMenu::itemWithId(int id) const
{
    for (StatusMenuItem* item : m_menu.items()) {
        if (id >= 1 && idOf(item) == id)
            return item;
    }
    return nullptr;
}

int DBusMenu::idOf(const StatusMenuItem* item) const
{
    if (!m_menu.items().contains(const_cast<StatusMenuItem*>(item)))
        return -1;
    auto found = m_ids.constFind(item);
    if (found == m_ids.constEnd())
        found = m_ids.insert(item, ++m_lastId);
    return *found;
}

DBusMenuLayoutItem DBusMenu::layoutOf(int id, int depth, const QStringList& names) const
{
    DBusMenuLayoutItem layout;
    layout.id = id;
    if (id != 0) {
        layout.properties = properties(*itemWithId(id), names);
        return layout;
    }
    layout.properties.insert(QStringLiteral("children-display"), QStringLiteral("submenu"));
    if (depth == 0)
        return layout;
    for (const StatusMenuItem* child : m_menu.items())
        layout.children.append(layoutOf(idOf(child), depth - 1, names));
    return layout;
}

void DBusMenu::refuseUnknownId(int id)
{
    if (calledFromDBus())
        sendErrorReply(unknownIdError, QStringLiteral("no menu entry has the id %1").arg(id));
}

bool DBusMenu::refuseTooLarge(qsizetype size)
{
    if (size <= maxRequestSize)
        return false;
    if (calledFromDBus())
        sendErrorReply(
            QDBusError::LimitsExceeded,
            QStringLiteral("at most %1 entries or names are answered in one call").arg(maxRequestSize));
    return true;
}

uint DBusMenu::GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                         DBusMenuLayoutItem& layout)
{
    if (parentId != 0 && !itemWithId(parentId)) {
        refuseUnknownId(parentId);
        return m_revision;
    }
    if (refuseTooLarge(propertyNames.size()))
        return m_revision;
    // The menu is one level deep: any depth below the root, or all (-1), is the same.
    const int depth = recursionDepth < 0 ? 1 : std::min(recursionDepth, 1);
    layout = layoutOf(parentId, depth, propertyNames);
    return m_revision;
}

DBusMenuItemPropertiesList DBusMenu::GetGroupProperties(const QList<int>& ids,
                                                        const QStringList& propertyNames)
{
    DBusMenuItemPropertiesList result;
    if (refuseTooLarge(ids.size()) || refuseTooLarge(propertyNames.size()))
        return result;
    // An empty list asks for every entry.
    QList<int> wanted = ids;
    if (wanted.isEmpty()) {
        for (const StatusMenuItem* item : m_menu.items())
            wanted.append(idOf(item));
    }
    // Each known entry once, in the order asked; unknown ids are left out.
    QSet<int> answered;
    for (int id : std::as_const(wanted)) {
        if (answered.contains(id) || (id != 0 && !itemWithId(id)))
            continue;
        answered.insert(id);
        if (id == 0)
            result.append({0, layoutOf(0, 0, propertyNames).properties});
        else
            result.append({id, properties(*itemWithId(id), propertyNames)});
    }
    return result;
}

QDBusVariant DBusMenu::GetProperty(int id, const QString& name)
{
    if (id != 0 && !itemWithId(id)) {
        refuseUnknownId(id);
        return QDBusVariant(QString());
    }
    const QVariantMap all = id == 0 ? layoutOf(0, 0, {}).properties : properties(*itemWithId(id));
    if (!all.contains(name)) {
        if (calledFromDBus())
            sendErrorReply(QStringLiteral("com.canonical.dbusmenu.Error.UnknownProperty"),
                           QStringLiteral("entry %1 has no property %2").arg(id).arg(shortened(name)));
        return QDBusVariant(QString());
    }
    return QDBusVariant(all.value(name));
}

bool DBusMenu::triggerLater(int id, const QString& eventId)
{
    StatusMenuItem* item = itemWithId(id);
    if (id != 0 && !item)
        return false;
    if (item && eventId == QLatin1String("clicked") && item->isEnabled())
        QMetaObject::invokeMethod(
            item, [item] { item->trigger(); }, Qt::QueuedConnection);
    return true;
}

void DBusMenu::Event(int id, const QString& eventId, const QDBusVariant& data, uint timestamp)
{
    Q_UNUSED(data);
    Q_UNUSED(timestamp);
    if (!triggerLater(id, eventId))
        refuseUnknownId(id);
}

QList<int> DBusMenu::EventGroup(const DBusMenuEventList& events)
{
    QList<int> idErrors;
    if (refuseTooLarge(events.size()))
        return idErrors;
    // A repeated event runs once: a panel's loop must not run an action many times over.
    QSet<std::pair<int, QString>> seen;
    qsizetype refused = 0;
    for (const DBusMenuEvent& event : events) {
        const std::pair<int, QString> key{event.id, event.eventId};
        if (seen.contains(key))
            continue;
        seen.insert(key);
        if (triggerLater(event.id, event.eventId))
            continue;
        ++refused;
        if (!idErrors.contains(event.id))
            idErrors.append(event.id);
    }
    if (!events.isEmpty() && refused == seen.size() && calledFromDBus())
        sendErrorReply(unknownIdError, QStringLiteral("no menu entry has any of the ids"));
    return idErrors;
}

bool DBusMenu::AboutToShow(int id)
{
    if (id != 0 && !itemWithId(id))
        refuseUnknownId(id);
    // The layout is always current: the panel never needs to fetch it again first.
    return false;
}

QList<int> DBusMenu::AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors)
{
    idErrors.clear();
    if (refuseTooLarge(ids.size()))
        return {};
    QSet<int> seen;
    for (int id : ids) {
        if (id != 0 && !itemWithId(id) && !seen.contains(id)) {
            seen.insert(id);
            idErrors.append(id);
        }
    }
    return {};
}

void DBusMenu::itemChanged(StatusMenuItem* item)
{
    m_changed.insert(item);
    m_batch->start();
}

void DBusMenu::sendChangedItems()
{
    DBusMenuItemPropertiesList updated;
    DBusMenuItemPropertyNamesList removed;
    for (StatusMenuItem* item : std::as_const(m_changed)) {
        const int id = idOf(item);
        if (id < 0)
            continue;
        const QVariantMap now = properties(*item);
        updated.append({id, now});
        QStringList gone;
        for (const QString& name : m_sentNames.value(item)) {
            if (!now.contains(name))
                gone.append(name);
        }
        if (!gone.isEmpty())
            removed.append({id, gone});
        m_sentNames.insert(item, now.keys());
    }
    m_changed.clear();
    std::sort(updated.begin(), updated.end(), [](const auto& a, const auto& b) { return a.id < b.id; });
    if (!updated.isEmpty())
        emit ItemsPropertiesUpdated(updated, removed);
}
