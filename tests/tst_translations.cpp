// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestMain.h"

#include "app/Translations.h"
#include "break/WindowController.h"
#include "cycle/AppState.h"
#include "preferences/BreakStyle.h"
#include "settings/SettingsWindow.h"
#include "statusbar/StatusBarController.h"
#include "statusbar/StatusMenu.h"
#include "statusbar/StatusMenuItem.h"

#include <QDomDocument>
#include <QFile>
#include <QProcess>
#include <QQuickItem>
#include <QQuickWindow>

// The program in Chinese: this whole test program runs with LANGUAGE and LANG set to zh_CN, as
// a Chinese desktop session starts it.
class TranslationsTest : public QObject {
    Q_OBJECT

    static QQuickWindow* windowNamed(const QString& objectName)
    {
        for (QWindow* window : QGuiApplication::allWindows()) {
            if (window->objectName() == objectName)
                return qobject_cast<QQuickWindow*>(window);
        }
        return nullptr;
    }

private slots:
    void initTestCase() { Translations::install(); }

    void everyTextHasAChineseTranslation()
    {
        QFile file(TESTS_SOURCE_DIR "/../translations/lulltide_zh_CN.ts");
        QVERIFY(file.open(QIODevice::ReadOnly));
        QDomDocument document;
        QVERIFY(document.setContent(&file));
        const QDomNodeList messages = document.elementsByTagName("message");
        QVERIFY(messages.size() > 90);
        for (int i = 0; i < messages.size(); ++i) {
            const QDomElement message = messages.at(i).toElement();
            const QString source = message.firstChildElement("source").text();
            const QDomElement translation = message.firstChildElement("translation");
            QVERIFY2(!translation.text().isEmpty() && translation.attribute("type").isEmpty(),
                     qPrintable(source));
            // Placeholders survive translation.
            for (const char* marker : {"%1", "%2", "%3"})
                QVERIFY2(source.contains(marker) == translation.text().contains(marker), qPrintable(source));
        }
    }

    void menuEntriesAreChinese()
    {
        AppState::setWorking(true);
        QStringList titles;
        for (StatusMenuItem* item : StatusBarController::menu().items())
            titles << item->title();
        QCOMPARE(titles, QStringList({"Lulltide - v1.0.0(1)", "", "- 暂停 -", "设置...", "", "检查更新...",
                                      "反馈...", "关于...", "退出"}));
        AppState::setManualPause(true);
        QCOMPARE(StatusBarController::menu().itemWithTag(AppState::pauseItemTag)->title(), "- 工作 -");
        AppState::setManualPause(false);
    }

    void settingsWindowTabsAndLabelsAreChinese()
    {
        SettingsWindow::show();
        QQuickWindow* window = windowNamed("settingsWindow");
        QVERIFY(window);
        QCOMPARE(window->title(), "设置");
        QStringList tabs;
        for (const char* tab :
             {"generalTab", "workflowTab", "styleTab", "timingTab", "historyTab", "aboutTab"})
            tabs << TestSupport::findItem(window->contentItem(), tab)->property("text").toString();
        QCOMPARE(tabs, QStringList({"通用", "工作流", "风格", "时机", "历史", "关于"}));
        QCOMPARE(TestSupport::findItem(window->contentItem(), "launchAtLogin")->property("text").toString(),
                 "登录时启动");
        window->close();
    }

    void breakStylesAreNamedInChineseAndTheirPromptsStayAsTheyAre()
    {
        QCOMPARE(BreakStyle::fromRawValue(0)->desc(), "放松");
        QCOMPARE(BreakStyle::fromRawValue(1)->desc(), "奋斗");
        QVERIFY(BreakStyle::fromRawValue(1)->prompts().contains("精益求精，全力以赴，无愧于自己的努力。"));
    }

    void skipButtonIsChinese()
    {
        WindowController::showBreak();
        QQuickWindow* window = windowNamed("breakWindow");
        QVERIFY(window);
        QCOMPARE(TestSupport::findItem(window->contentItem(), "skipButton")->property("text").toString(),
                 "跳过");
        WindowController::closeBreak();
    }

    void commandLineHelpAndMessagesAreChinese()
    {
        QProcess lulltide;
        lulltide.start(LULLTIDE_BINARY, {"--help"});
        QVERIFY(lulltide.waitForFinished(10000));
        const QString help = QString::fromUtf8(lulltide.readAllStandardOutput());
        QVERIFY2(help.contains("--pause         暂停工作计时，并关闭正在显示的休息画面。"), qPrintable(help));
        // Qt's own options come from the system's Qt translations.
        QVERIFY2(help.contains("显示版本信息"), qPrintable(help));
        lulltide.start(LULLTIDE_BINARY, {"--status"});
        QVERIFY(lulltide.waitForFinished(10000));
        QCOMPARE(lulltide.exitCode(), 1);
        QVERIFY(QString::fromUtf8(lulltide.readAllStandardError()).startsWith("Lulltide 没有运行"));
    }
};

namespace {
void speakChinese()
{
    qputenv("LANGUAGE", "zh_CN");
    qputenv("LANG", "zh_CN.UTF-8");
    qunsetenv("LC_ALL");
    qunsetenv("LC_MESSAGES");
    TestSupport::startPrivateSessionBus();
}
} // namespace

int main(int argc, char* argv[])
{
    return TestSupport::runTests<TranslationsTest>(argc, argv, nullptr, speakChinese);
}

#include "tst_translations.moc"
