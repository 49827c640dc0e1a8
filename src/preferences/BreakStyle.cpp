// SPDX-License-Identifier: GPL-3.0-or-later
#include "BreakStyle.h"

#include <QCoreApplication>

std::optional<BreakStyle> BreakStyle::fromRawValue(qint64 rawValue)
{
    switch (rawValue) {
    case relaxation:
        return BreakStyle(relaxation);
    case struggle:
        return BreakStyle(struggle);
    default:
        return std::nullopt;
    }
}

QString BreakStyle::desc() const
{
    return m_value == struggle ? QCoreApplication::translate("BreakStyle", "Struggle")
                               : QCoreApplication::translate("BreakStyle", "Relaxation");
}

QStringList BreakStyle::prompts() const
{
    if (m_value == struggle) {
        return {
            QStringLiteral("精益求精，全力以赴，无愧于自己的努力。"),
            QStringLiteral("一丝不苟，恪尽职守，全心全意投入工作。"),
            QStringLiteral("脚踏实地，认真钻研，每一份努力都值得尊重。"),
            QStringLiteral("敬业拼搏，兢兢业业，把每一天都当作展示实力的机会。"),
            QStringLiteral("不懈追求卓越，不间断进取，只有努力才能铸就成功。"),
            QStringLiteral("工作是责任，也是荣誉，全神贯注，全情投入。"),
            QStringLiteral("不计较付出，只追求结果，每一步都决定着未来的高度。"),
            QStringLiteral("刻苦努力，认真琢磨，精益求精才能走向巅峰。"),
            QStringLiteral("每一个细节都值得重视，每一份工作都值得认真对待。"),
            QStringLiteral("严谨治事，用心经营，工作中的每一份认真都是成功的基石。"),
        };
    }
    return {
        QStringLiteral("今天心情放假，工作也跟着轻松一下。"),
        QStringLiteral("世界那么大，工作那么小，今天就随意点吧。"),
        QStringLiteral("认真工作好累，今天就偷个懒吧。"),
        QStringLiteral("认真工作是好事，但今天我选择开开小差。"),
        QStringLiteral("今天我是自由自在的小懒猫，不想太认真。"),
        QStringLiteral("工作再认真，也得给自己点轻松的时间。"),
        QStringLiteral("慢慢来，工作不急，我要慢悠悠地躺着。"),
        QStringLiteral("工作是认真的，但今天我选择放个假。"),
        QStringLiteral("偷偷告诉你，今天的工作我只做了一半。"),
        QStringLiteral("谁说工作要认真，今天我要放松一下。"),
    };
}
