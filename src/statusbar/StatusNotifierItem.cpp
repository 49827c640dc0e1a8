// SPDX-License-Identifier: GPL-3.0-or-later
#include "StatusNotifierItem.h"

#include "BadgeIcon.h"
#include "Config.h"
#include "PanelHost.h"
#include "StatusItem.h"
#include "StatusMenu.h"
#include "StatusMenuItem.h"
#include "cycle/AppState.h"
#include "cycle/CycleControl.h"
#include "logging/Logger.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDir>
#include <QFile>

namespace {

// One size of 22 px or less and one up to 64 px is what hosts need; these cover the usual
// panel heights without scaling.
constexpr int iconSizes[] = {16, 22, 24, 32, 48};

template <typename Reply, typename Handler>
void whenAnswered(const QDBusPendingCall& call, QObject* context, Handler handler)
{
    auto* watcher = new QDBusPendingCallWatcher(call, context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context, [watcher, handler] {
        watcher->deleteLater();
        handler(Reply(*watcher));
    });
}

} // namespace

StatusNotifierItem::StatusNotifierItem(StatusItem& item, const QDBusConnection& connection,
                                       const QString& menuPath, QObject* parent)
    : QObject(parent), m_item(item), m_connection(connection), m_menuPath(menuPath)
{
    StatusNotifierTypes::registerMetaTypes();
    connect(&m_item, &StatusItem::titleChanged, this, &StatusNotifierItem::titleChanged);
    connect(&m_item, &StatusItem::pausedTextChanged, this, &StatusNotifierItem::titleChanged);
    connect(&m_item, &StatusItem::imagePathChanged, this, &StatusNotifierItem::updateIcon);
    connect(&m_item, &StatusItem::toolTipChanged, this, [this] {
        if (m_item.toolTip() == m_toolTipText)
            return;
        m_toolTipText = m_item.toolTip();
        if (m_registered)
            emit NewToolTip();
    });
    m_label = labelText();
    m_toolTipText = m_item.toolTip();
    updateIcon();
}

QString StatusNotifierItem::themeIconName()
{
    return QString::fromUtf8(Config::appId) + QStringLiteral("-muyu");
}

QString StatusNotifierItem::id() const
{
    return QString::fromUtf8(Config::appId);
}

QString StatusNotifierItem::title() const
{
    return QString::fromUtf8(Config::name);
}

QString StatusNotifierItem::iconThemePath() const
{
    // Installed beside the program (…/bin and …/share), or in the build tree: the panel finds
    // the icon there when it is not in the system's icon theme.
    QString icons =
        QDir::cleanPath(QCoreApplication::applicationDirPath() + QStringLiteral("/../share/icons"));
    if (QFile::exists(icons + QStringLiteral("/hicolor/scalable/status/") + themeIconName() +
                      QStringLiteral(".svg")))
        return icons;
    return {};
}

SniToolTip StatusNotifierItem::toolTip() const
{
    SniToolTip tip;
    tip.title = title();
    tip.text = m_toolTipText;
    return tip;
}

bool StatusNotifierItem::exportAndRegister()
{
    if (!m_connection.registerObject(QLatin1String(objectPath), this,
                                     QDBusConnection::ExportScriptableContents |
                                         QDBusConnection::ExportAllProperties))
        return false;

    m_watcher = new QDBusServiceWatcher(QLatin1String(watcherService), m_connection,
                                        QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString& oldOwner, const QString& newOwner) {
                m_registered = false;
                m_hasWatcher = !newOwner.isEmpty();
                if (m_hasWatcher)
                    watcherAppeared(newOwner);
                else if (!oldOwner.isEmpty())
                    emit watcherLost();
            });

    const QDBusReply<QString> owner = m_connection.interface()->serviceOwner(QLatin1String(watcherService));
    m_hasWatcher = owner.isValid() && !owner.value().isEmpty();
    if (m_hasWatcher)
        watcherAppeared(owner.value());
    return true;
}

void StatusNotifierItem::watcherAppeared(const QString& owner)
{
    // Which panel is it? Asked first, so the icon suits the panel before it reads it.
    const QDBusMessage question = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetConnectionUnixProcessID"));
    QDBusMessage call = question;
    call << owner;
    whenAnswered<QDBusPendingReply<quint32>>(
        m_connection.asyncCall(call), this, [this, owner](const QDBusPendingReply<quint32>& pid) {
            const QString process = pid.isValid() ? PanelHost::processName(pid.value()) : QString();
            m_hostDrawsLabel = PanelHost::drawsLabel(process);
            // Said once per panel: which one is there and how it shows the countdown.
            const QString panel =
                (process.isEmpty() ? QStringLiteral("an unknown process") : process) +
                (m_hostDrawsLabel ? QStringLiteral(": the countdown shows as a label beside the icon")
                                  : QStringLiteral(": the countdown shows as a badge on the icon"));
            if (panel != m_panelLogged)
                logger().info(QStringLiteral("the panel's watcher is ") + panel);
            m_panelLogged = panel;
            updateIcon();
            registerWith(owner);
        });
}

void StatusNotifierItem::registerWith(const QString& owner)
{
    QDBusMessage call = QDBusMessage::createMethodCall(owner, QStringLiteral("/StatusNotifierWatcher"),
                                                       QLatin1String(watcherService),
                                                       QStringLiteral("RegisterStatusNotifierItem"));
    call << m_connection.baseService();
    whenAnswered<QDBusPendingReply<>>(
        m_connection.asyncCall(call), this, [this](const QDBusPendingReply<>& reply) {
            if (reply.isError()) {
                if (!m_registrationErrorLogged)
                    logger().info(QStringLiteral("the panel refused the status item: ") +
                                  reply.error().message());
                m_registrationErrorLogged = true;
                return;
            }
            m_registered = true;
            emit registered();
        });
}

// The change signals go out only while a panel holds the item: it reads everything anew when
// it takes the item, and until then the signals would only wake the bus once a second.
void StatusNotifierItem::titleChanged()
{
    updateIcon();
    if (labelText() == m_label)
        return;
    m_label = labelText();
    if (m_registered)
        emit XAyatanaNewLabel(m_label, labelGuide());
}

QString StatusNotifierItem::labelText() const
{
    // A countdown that stands still would pass for a frozen clock: the label says why instead.
    const QString title = m_item.title();
    return title.isEmpty() || m_item.pausedText().isEmpty() ? title : m_item.pausedText();
}

void StatusNotifierItem::updateIcon()
{
    const QString svg = m_item.imagePath();
    const bool hasImage = !svg.isEmpty() && QFile::exists(svg);
    // Panels that draw the label show the countdown or the pause there; the others get the
    // minutes as a badge and the pause as a sign. With no label, the sign goes on every panel.
    const bool labelSaysAll = m_hostDrawsLabel && !labelText().isEmpty();
    const bool paused = hasImage && !m_item.pausedText().isEmpty() && !labelSaysAll;
    const QString badge = hasImage && !paused && !m_hostDrawsLabel ? BadgeIcon::badgeText(m_item.title())
                                                                    : QString();
    const QString key = !hasImage ? QString()
                        : paused  ? QStringLiteral("/paused")
                                  : (badge.isEmpty() ? QStringLiteral("plain") : badge);
    if (key == m_iconKey && !(hasImage && m_iconPixmap.isEmpty()))
        return;
    m_iconKey = key;

    m_iconPixmap.clear();
    if (hasImage) {
        for (int size : iconSizes) {
            const QImage image = paused ? BadgeIcon::drawPaused(svg, size) : BadgeIcon::draw(svg, size, badge);
            if (!image.isNull())
                m_iconPixmap.append(SniIconPixmap::fromImage(image));
        }
    }
    // A host prefers the name when there is one, so the badged icon goes without.
    m_iconName = hasImage && badge.isEmpty() && !paused ? themeIconName() : QString();
    if (m_registered)
        emit NewIcon();
}

void StatusNotifierItem::Activate(int x, int y)
{
    emit menuRequested(QPoint(x, y));
}

void StatusNotifierItem::SecondaryActivate(int, int)
{
    // A middle click pauses or resumes, like the menu's pause entry; after this call's reply.
    QMetaObject::invokeMethod(
        this, [] { CycleControl::togglePause(CycleControl::Origin::MiddleClick); }, Qt::QueuedConnection);
}

void StatusNotifierItem::ContextMenu(int x, int y)
{
    emit menuRequested(QPoint(x, y));
}

void StatusNotifierItem::Scroll(int, const QString&)
{
    // Scrolling over the item means nothing to a break reminder.
}

void StatusNotifierItem::ProvideXdgActivationToken(const QString& token)
{
    // Wayland compositors let the next window take the focus with this token. Real tokens are
    // short printable text; anything else is not put into our environment.
    if (token.isEmpty() || token.size() > 256)
        return;
    for (QChar c : token) {
        if (c.unicode() <= 0x20 || c.unicode() >= 0x7f)
            return;
    }
    qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
}
