#pragma once

#include <QObject>
#include <QString>

class StatusMenu;

// What the panel shows for Lulltide: an image with a title beside it, and a menu.
class StatusItem : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString title READ title WRITE setTitle NOTIFY titleChanged)

public:
    explicit StatusItem(QObject* parent = nullptr);

    QString title() const { return m_title; }
    void setTitle(const QString& title);

    // The image drawn before the title.
    QString imageName() const { return QStringLiteral("muyu"); }

    StatusMenu* menu() const { return m_menu; }
    void setMenu(StatusMenu* menu) { m_menu = menu; }

signals:
    void titleChanged(const QString& title);

private:
    QString m_title;
    StatusMenu* m_menu = nullptr;
};
