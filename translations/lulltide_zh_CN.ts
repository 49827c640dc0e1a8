<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>AboutDialog</name>
    <message>
        <source>About %1</source>
        <translation>关于 %1</translation>
    </message>
    <message>
        <source>Version %1 (%2)</source>
        <translation>版本 %1 (%2)</translation>
    </message>
    <message>
        <source>Release Notes</source>
        <translation>更新说明</translation>
    </message>
</context>
<context>
    <name>AppState</name>
    <message>
        <source>- Stop -</source>
        <translation>- 暂停 -</translation>
    </message>
    <message>
        <source>- Wrok -</source>
        <translation>- 工作 -</translation>
    </message>
</context>
<context>
    <name>Appcast</name>
    <message>
        <source>the feed declares a document type, which no update feed needs</source>
        <translation>更新源声明了文档类型，而更新源不需要它</translation>
    </message>
    <message>
        <source>the feed holds an attribute far too long for an update feed</source>
        <translation>更新源中有一个属性过长，不像是更新源</translation>
    </message>
    <message>
        <source>this is no RSS feed</source>
        <translation>这不是 RSS 更新源</translation>
    </message>
    <message>
        <source>the feed holds a text far too long for an update feed</source>
        <translation>更新源中有一段文字过长，不像是更新源</translation>
    </message>
    <message>
        <source>the feed names a version that is no version: </source>
        <translation>更新源中的版本号无效：</translation>
    </message>
    <message>
        <source>the feed is not well-formed XML (</source>
        <translation>更新源不是格式正确的 XML（</translation>
    </message>
    <message>
        <source>the feed&apos;s download link is not an https address</source>
        <translation>更新源中的下载链接不是 https 地址</translation>
    </message>
    <message>
        <source>the feed&apos;s release notes link is not an https address</source>
        <translation>更新源中的更新说明链接不是 https 地址</translation>
    </message>
</context>
<context>
    <name>BreakGate</name>
    <message>
        <source>Postponing breaks is off: turn it on in the settings, under Timing.</source>
        <translation>推迟休息未开启：请在设置的“时机”中开启。</translation>
    </message>
    <message>
        <source>This break was postponed once already: take it or skip it.</source>
        <translation>这次休息已经推迟过一次：请休息或跳过。</translation>
    </message>
    <message>
        <source>This break was postponed %1 times in a row already: take it or skip it.</source>
        <translation>这次休息已经连续推迟 %1 次：请休息或跳过。</translation>
    </message>
    <message>
        <source>The greeting of a new day cannot be postponed.</source>
        <translation>新一天的问候不能推迟。</translation>
    </message>
    <message>
        <source>This long break is forced: it cannot be postponed.</source>
        <translation>这次长休息是强制的：不能推迟。</translation>
    </message>
    <message>
        <source>No break is coming: the countdown is paused or stopped.</source>
        <translation>没有即将到来的休息：倒计时已暂停或停止。</translation>
    </message>
    <message>
        <source>1 minute</source>
        <translation>1 分钟</translation>
    </message>
    <message>
        <source>%1 minutes</source>
        <translation>%1 分钟</translation>
    </message>
    <message>
        <source>%1 seconds</source>
        <translation>%1 秒</translation>
    </message>
    <message>
        <source>The break is already more than %1 away.</source>
        <translation>离休息本来就还有 %1 以上。</translation>
    </message>
</context>
<context>
    <name>BreakStyle</name>
    <message>
        <source>Struggle</source>
        <translation>奋斗</translation>
    </message>
    <message>
        <source>Relaxation</source>
        <translation>放松</translation>
    </message>
</context>
<context>
    <name>BreakView</name>
    <message>
        <source>Skip</source>
        <translation>跳过</translation>
    </message>
    <message>
        <source>Postpone</source>
        <translation>推迟</translation>
    </message>
    <message>
        <source>Long break</source>
        <translation>长休息</translation>
    </message>
    <message>
        <source>A new day</source>
        <translation>新的一天</translation>
    </message>
    <message>
        <source>Short break</source>
        <translation>短休息</translation>
    </message>
    <message>
        <source>The break is over</source>
        <translation>休息结束了</translation>
    </message>
    <message>
        <source>One minute left</source>
        <translation>还剩一分钟</translation>
    </message>
    <message>
        <source>%1, %2: %3</source>
        <translation>%1，%2：%3</translation>
    </message>
    <message>
        <source>1 second</source>
        <translation>1 秒</translation>
    </message>
    <message>
        <source>%1 seconds</source>
        <translation>%1 秒</translation>
    </message>
    <message>
        <source>1 minute</source>
        <translation>1 分钟</translation>
    </message>
    <message>
        <source>%1 minutes</source>
        <translation>%1 分钟</translation>
    </message>
</context>
<context>
    <name>CommandLine</name>
    <message>
        <source>Lulltide is already running.</source>
        <translation>Lulltide 已在运行。</translation>
    </message>
    <message>
        <source>Pause the work cycle, closing a break that is up.</source>
        <translation>暂停工作计时，并关闭正在显示的休息画面。</translation>
    </message>
    <message>
        <source>Resume the work cycle with a fresh work period.</source>
        <translation>继续工作计时，从新的工作时段开始。</translation>
    </message>
    <message>
        <source>Pause when working, resume when paused.</source>
        <translation>工作时暂停，暂停时继续。</translation>
    </message>
    <message>
        <source>End the break that is up, as its Skip button does.</source>
        <translation>结束正在进行的休息，与“跳过”按钮相同。</translation>
    </message>
    <message>
        <source>Open the settings window.</source>
        <translation>打开设置窗口。</translation>
    </message>
    <message>
        <source>Quit Lulltide.</source>
        <translation>退出 Lulltide。</translation>
    </message>
    <message>
        <source>Reminds you to take breaks from the screen. Without options it starts Lulltide; the options control the running Lulltide.</source>
        <translation>提醒你离开屏幕休息一下。不带选项时启动 Lulltide；选项用于控制正在运行的 Lulltide。</translation>
    </message>
    <message>
        <source>Lulltide did not answer: %1</source>
        <translation>Lulltide 没有回应：%1</translation>
    </message>
    <message>
        <source>Give one option at a time: --%1 and --%2 were both given.</source>
        <translation>一次只能给一个选项：同时给了 --%1 和 --%2。</translation>
    </message>
    <message>
        <source>Lulltide is not running: there is no D-Bus session bus to reach it.</source>
        <translation>Lulltide 没有运行：没有可用的 D-Bus 会话总线。</translation>
    </message>
    <message>
        <source>Lulltide is not running.</source>
        <translation>Lulltide 没有运行。</translation>
    </message>
    <message>
        <source>Try &apos;lulltide --help&apos;.</source>
        <translation>请运行“lulltide --help”查看用法。</translation>
    </message>
    <message>
        <source>Exit status:</source>
        <translation>退出状态：</translation>
    </message>
    <message>
        <source>done</source>
        <translation>完成</translation>
    </message>
    <message>
        <source>usage error: an unknown option, a stray argument or two options at once</source>
        <translation>用法错误：未知的选项、多余的参数，或同时给了两个选项</translation>
    </message>
    <message>
        <source>Lulltide is not running, and there is no display to start it on.</source>
        <translation>Lulltide 没有运行，也没有可以启动它的显示环境。</translation>
    </message>
    <message>
        <source>This break cannot be skipped: long breaks are forced.</source>
        <translation>这次休息不能跳过：长休息是强制的。</translation>
    </message>
    <message>
        <source>Lulltide cannot start: another program holds the name %1 on the session bus.</source>
        <translation>Lulltide 无法启动：另一个程序占用了会话总线上的名称 %1。</translation>
    </message>
    <message>
        <source>Lulltide cannot be reached: another program holds the name %1 on the session bus.</source>
        <translation>无法联系 Lulltide：另一个程序占用了会话总线上的名称 %1。</translation>
    </message>
    <message>
        <source>Unexpected argument &apos;%1&apos;.</source>
        <translation>多余的参数“%1”。</translation>
    </message>
    <message>
        <source>Postpone the coming or shown break by MINUTES (default: the setting), when postponing is on in the settings.</source>
        <translation>将即将到来或正在显示的休息推迟 MINUTES 分钟（默认为设置中的值），需在设置中开启推迟。</translation>
    </message>
    <message>
        <source>Print the state and the countdown: working 24:13, break 03:12, held +03:12, paused or stopped.</source>
        <translation>输出状态和倒计时：working 24:13、break 03:12、held +03:12、paused 或 stopped。</translation>
    </message>
    <message>
        <source>MINUTES of --postpone must be a whole number from 1 to %1.</source>
        <translation>--postpone 的 MINUTES 必须是 1 到 %1 之间的整数。</translation>
    </message>
    <message>
        <source>Print the breaks of the last DAYS days (default 7) from the history file, one line a day.</source>
        <translation>从历史文件打印最近 DAYS 天（默认 7 天）的休息情况，每天一行。</translation>
    </message>
    <message>
        <source>Write every event of the history file as CSV to standard output.</source>
        <translation>将历史文件中的每个事件以 CSV 格式写到标准输出。</translation>
    </message>
    <message>
        <source>Give one option at a time.</source>
        <translation>一次只能给出一个选项。</translation>
    </message>
    <message>
        <source>DAYS of --history must be a whole number from 1 to 366.</source>
        <translation>--history 的 DAYS 必须是 1 到 366 之间的整数。</translation>
    </message>
    <message>
        <source>Lulltide is not running or cannot be reached, or refused the request; or the history file cannot be read</source>
        <translation>Lulltide 没有运行或无法联系，或者拒绝了请求；或者无法读取历史文件</translation>
    </message>
    <message>
        <source>Cannot read the history file %1: %2.</source>
        <translation>无法读取历史文件 %1：%2。</translation>
    </message>
</context>
<context>
    <name>ControlService</name>
    <message>
        <source>A break can be postponed by at most %1 minutes.</source>
        <translation>休息最多只能推迟 %1 分钟。</translation>
    </message>
</context>
<context>
    <name>Feedback</name>
    <message>
        <source>Please use Chinese or English in your mail, if you can.</source>
        <comment>mail body</comment>
        <translation>如果可以，请用中文或英文写邮件。</translation>
    </message>
</context>
<context>
    <name>HeadsUpNotice</name>
    <message>
        <source>Break in %1</source>
        <translation>%1后休息</translation>
    </message>
    <message>
        <source>A long break of %1.</source>
        <translation>一次 %1的长休息。</translation>
    </message>
    <message>
        <source>A short break of %1.</source>
        <translation>一次 %1的短休息。</translation>
    </message>
    <message>
        <source>Start now</source>
        <translation>现在开始</translation>
    </message>
    <message>
        <source>Postpone</source>
        <translation>推迟</translation>
    </message>
    <message>
        <source>1 minute</source>
        <translation>1 分钟</translation>
    </message>
    <message>
        <source>%1 minutes</source>
        <translation>%1 分钟</translation>
    </message>
    <message>
        <source>1 second</source>
        <translation>1 秒</translation>
    </message>
    <message>
        <source>%1 seconds</source>
        <translation>%1 秒</translation>
    </message>
    <message>
        <source>%1 %2</source>
        <comment>minutes, then seconds</comment>
        <translation>%1 %2</translation>
    </message>
</context>
<context>
    <name>HistoryModel</name>
    <message>
        <source>The history cannot be read: %1.</source>
        <translation>无法读取历史：%1。</translation>
    </message>
</context>
<context>
    <name>HistorySummary</name>
    <message>
        <source>%1 min</source>
        <translation>%1分钟</translation>
    </message>
    <message>
        <source>%1 h %2 min</source>
        <translation>%1小时%2分</translation>
    </message>
    <message>
        <source>This week</source>
        <translation>本周</translation>
    </message>
    <message>
        <source>These %1 days</source>
        <translation>这 %1 天</translation>
    </message>
    <message>
        <source>%1: nothing recorded yet.</source>
        <translation>%1：尚无记录。</translation>
    </message>
    <message>
        <source>%1: %2 of %3 breaks taken; longest stretch without a break: %4 (%5).</source>
        <translation>%1：%3 次休息中完成了 %2 次；最长连续未休息：%4（%5）。</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>日期</translation>
    </message>
    <message>
        <source>Breaks</source>
        <translation>休息</translation>
    </message>
    <message>
        <source>Taken</source>
        <translation>完成</translation>
    </message>
    <message>
        <source>Skipped</source>
        <translation>跳过</translation>
    </message>
    <message>
        <source>Postponed</source>
        <translation>推迟</translation>
    </message>
    <message>
        <source>At the screen</source>
        <translation>屏幕前</translation>
    </message>
    <message>
        <source>Longest stretch</source>
        <translation>最长连续</translation>
    </message>
    <message>
        <source>Today</source>
        <translation>今天</translation>
    </message>
</context>
<context>
    <name>HoldNotice</name>
    <message>
        <source>The break waits while %1.</source>
        <translation>休息在等待：%1。</translation>
    </message>
    <message>
        <source>It comes at %1 at the latest.</source>
        <translation>最晚 %1 开始。</translation>
    </message>
    <message>
        <source>Break held</source>
        <translation>休息暂缓</translation>
    </message>
</context>
<context>
    <name>HoldSource</name>
    <message>
        <source>another program is full screen</source>
        <translation>其他程序正在全屏</translation>
    </message>
    <message>
        <source>an application keeps the session awake</source>
        <translation>有应用阻止会话空闲</translation>
    </message>
    <message>
        <source>Do Not Disturb is on</source>
        <translation>勿扰模式已开启</translation>
    </message>
</context>
<context>
    <name>PanelAbsenceNotice</name>
    <message>
        <source>Lulltide is running</source>
        <translation>Lulltide 正在运行</translation>
    </message>
    <message>
        <source>The next break comes at %1.</source>
        <translation>下次休息在 %1。</translation>
    </message>
    <message>
        <source>No panel on this desktop can show Lulltide. Open Lulltide from the application menu to reach its settings. On GNOME, the &quot;AppIndicator and KStatusNotifierItem Support&quot; extension shows its countdown in the top bar.</source>
        <translation>这个桌面上没有能显示 Lulltide 的面板。从应用程序菜单打开 Lulltide 即可进入它的设置。在 GNOME 上，“AppIndicator and KStatusNotifierItem Support”扩展会在顶栏显示它的倒计时。</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>设置</translation>
    </message>
</context>
<context>
    <name>PrefAboutView</name>
    <message>
        <source>Wooden fish</source>
        <translation>木鱼</translation>
    </message>
    <message>
        <source>Release Notes</source>
        <translation>更新说明</translation>
    </message>
</context>
<context>
    <name>PrefBreakView</name>
    <message>
        <source>Short Break Options</source>
        <translation>短休息选项</translation>
    </message>
    <message>
        <source>Every</source>
        <translation>每</translation>
    </message>
    <message>
        <source>Work minutes</source>
        <translation>工作分钟数</translation>
    </message>
    <message>
        <source>mins</source>
        <translation>分钟</translation>
    </message>
    <message>
        <source>Break</source>
        <translation>休息</translation>
    </message>
    <message>
        <source>Short break seconds</source>
        <translation>短休息秒数</translation>
    </message>
    <message>
        <source>seconds</source>
        <translation>秒</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>文字</translation>
    </message>
    <message>
        <source>Custom break prompt</source>
        <translation>自定义休息提示</translation>
    </message>
    <message>
        <source>Short break prompt</source>
        <translation>短休息提示</translation>
    </message>
    <message>
        <source>Long Break Options</source>
        <translation>长休息选项</translation>
    </message>
    <message>
        <source>Short breaks before a long one</source>
        <translation>长休息前的短休息次数</translation>
    </message>
    <message>
        <source>short breaks</source>
        <translation>次短休息</translation>
    </message>
    <message>
        <source>Long break minutes</source>
        <translation>长休息分钟数</translation>
    </message>
    <message>
        <source>Long break prompt</source>
        <translation>长休息提示</translation>
    </message>
    <message>
        <source>Force for long breaks(skip button will not display)</source>
        <translation>强制长休息（不显示跳过按钮）</translation>
    </message>
    <message>
        <source>Other Options</source>
        <translation>其他选项</translation>
    </message>
    <message>
        <source>Restart timer after Mac awake</source>
        <translation>唤醒后重新计时</translation>
    </message>
    <message>
        <source>Stop timer after Mouse stop for 5 mins</source>
        <translation>鼠标静止 5 分钟后停止计时</translation>
    </message>
    <message>
        <source>Show a new day prompt</source>
        <translation>显示新一天的问候</translation>
    </message>
</context>
<context>
    <name>PrefGeneralView</name>
    <message>
        <source>Start options</source>
        <translation>启动选项</translation>
    </message>
    <message>
        <source>Launch at login</source>
        <translation>登录时启动</translation>
    </message>
    <message>
        <source>StatusBar options</source>
        <translation>状态栏选项</translation>
    </message>
    <message>
        <source>Show time in StatusBar</source>
        <translation>在状态栏显示时间</translation>
    </message>
    <message>
        <source>Update options</source>
        <translation>更新选项</translation>
    </message>
    <message>
        <source>Auto check update for Lulltide</source>
        <translation>自动检查 Lulltide 更新</translation>
    </message>
    <message>
        <source>Break style</source>
        <translation>休息风格</translation>
    </message>
</context>
<context>
    <name>PrefHistoryView</name>
    <message>
        <source>Keep a history of my breaks</source>
        <translation>记录我的休息历史</translation>
    </message>
    <message>
        <source>30 days</source>
        <translation>30 天</translation>
    </message>
    <message>
        <source>7 days</source>
        <translation>7 天</translation>
    </message>
    <message>
        <source>Taken</source>
        <translation>完成</translation>
    </message>
    <message>
        <source>Skipped</source>
        <translation>跳过</translation>
    </message>
    <message>
        <source>Kept on this computer only, in %1.</source>
        <translation>仅保存在这台电脑上：%1。</translation>
    </message>
    <message>
        <source>Forget history</source>
        <translation>清除历史</translation>
    </message>
    <message>
        <source>Forget history?</source>
        <translation>清除历史？</translation>
    </message>
    <message>
        <source>Every recorded break is deleted. This cannot be undone.</source>
        <translation>所有记录的休息都将被删除，且无法恢复。</translation>
    </message>
    <message>
        <source>Point at a day for its time at the screen and its longest stretch without a break.</source>
        <translation>指向某一天，查看当天在屏幕前的时间和最长连续未休息时间。</translation>
    </message>
    <message>
        <source>Cut short</source>
        <translation>中途结束</translation>
    </message>
    <message>
        <source>First line: time at the screen; second: the longest stretch without a break; third: breaks postponed.</source>
        <translation>第一行：在屏幕前的时间；第二行：最长连续未休息时间；第三行：推迟的休息。</translation>
    </message>
    <message>
        <source>%1: %2 at the screen; longest stretch without a break: %3; postponed: %4.</source>
        <translation>%1：在屏幕前 %2；最长连续未休息：%3；推迟：%4。</translation>
    </message>
    <message>
        <source>%1: %2 taken, %3 skipped, %4 cut short; %5 at the screen; longest stretch without a break: %6; postponed: %7.</source>
        <translation>%1：休息 %2 次，跳过 %3 次，提前结束 %4 次；屏幕前 %5；最长连续工作：%6；推迟 %7 次。</translation>
    </message>
    <message>
        <source>Days</source>
        <translation>日期</translation>
    </message>
</context>
<context>
    <name>PrefStyleView</name>
    <message>
        <source>Break Style</source>
        <translation>休息风格</translation>
    </message>
    <message>
        <source>Break Prompts</source>
        <translation>休息提示语</translation>
    </message>
</context>
<context>
    <name>PrefTimingView</name>
    <message>
        <source>Heads-up</source>
        <translation>提前提醒</translation>
    </message>
    <message>
        <source>Tell me before a break</source>
        <translation>休息前提醒我</translation>
    </message>
    <message>
        <source>Notify</source>
        <translation>提前</translation>
    </message>
    <message>
        <source>Seconds of notice before a break</source>
        <translation>休息前提醒的秒数</translation>
    </message>
    <message>
        <source>seconds before (10 to 600)</source>
        <translation>秒（10 到 600）</translation>
    </message>
    <message>
        <source>Postpone</source>
        <translation>推迟</translation>
    </message>
    <message>
        <source>Allow postponing breaks</source>
        <translation>允许推迟休息</translation>
    </message>
    <message>
        <source>Postpone by</source>
        <translation>推迟</translation>
    </message>
    <message>
        <source>Minutes to postpone a break by</source>
        <translation>推迟休息的分钟数</translation>
    </message>
    <message>
        <source>At most</source>
        <translation>最多</translation>
    </message>
    <message>
        <source>Postpones in a row</source>
        <translation>连续推迟次数</translation>
    </message>
    <message>
        <source>times in a row (1 to 5)</source>
        <translation>次（连续，1 到 5）</translation>
    </message>
    <message>
        <source>Hold</source>
        <translation>暂缓</translation>
    </message>
    <message>
        <source>Hold breaks while I am presenting, in a call or watching full screen</source>
        <translation>演示、通话或全屏观看时暂缓休息</translation>
    </message>
    <message>
        <source>A due break waits while another program is full screen, an application keeps the session awake, or the desktop&apos;s Do Not Disturb is on, and comes 10 seconds after the last of them ends.</source>
        <translation>当其他程序全屏、有应用阻止会话空闲，或桌面开启了勿扰模式时，到时的休息会等待，并在这些情况全部结束 10 秒后开始。</translation>
    </message>
    <message>
        <source>mins (1 to 1440)</source>
        <translation>分钟（1 到 1440）</translation>
    </message>
    <message>
        <source>Wait at most</source>
        <translation>最多等待</translation>
    </message>
    <message>
        <source>Minutes a held break waits at most</source>
        <translation>暂缓的休息最多等待的分钟数</translation>
    </message>
    <message>
        <source>mins (0: as long as it takes)</source>
        <translation>分钟（0：一直等待）</translation>
    </message>
</context>
<context>
    <name>PreferencesView</name>
    <message>
        <source>General</source>
        <translation>通用</translation>
    </message>
    <message>
        <source>Workflow</source>
        <translation>工作流</translation>
    </message>
    <message>
        <source>Style</source>
        <translation>风格</translation>
    </message>
    <message>
        <source>About</source>
        <translation>关于</translation>
    </message>
    <message>
        <source>Timing</source>
        <translation>时机</translation>
    </message>
    <message>
        <source>History</source>
        <translation>历史</translation>
    </message>
</context>
<context>
    <name>QCommandLineParser</name>
    <message>
        <source>Displays help on commandline options.</source>
        <translation>显示命令行选项的帮助。</translation>
    </message>
</context>
<context>
    <name>SettingsWindow</name>
    <message>
        <source>Settings</source>
        <translation>设置</translation>
    </message>
</context>
<context>
    <name>StatusBarController</name>
    <message>
        <source>Settings...</source>
        <translation>设置...</translation>
    </message>
    <message>
        <source>Check for Updates...</source>
        <translation>检查更新...</translation>
    </message>
    <message>
        <source>Feedback...</source>
        <translation>反馈...</translation>
    </message>
    <message>
        <source>About...</source>
        <translation>关于...</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>退出</translation>
    </message>
    <message>
        <source>Postpone Break</source>
        <translation>推迟休息</translation>
    </message>
    <message>
        <source>Paused</source>
        <translation>已暂停</translation>
    </message>
    <message>
        <source>Stopped while the screen is locked</source>
        <translation>屏幕锁定，已停止</translation>
    </message>
    <message>
        <source>Stopped: no activity</source>
        <translation>无活动，已停止</translation>
    </message>
    <message>
        <source>Stopped</source>
        <translation>已停止</translation>
    </message>
    <message>
        <source>Break waiting %1</source>
        <translation>休息已等待 %1</translation>
    </message>
    <message>
        <source>It comes at %1 at the latest.</source>
        <translation>最晚 %1 开始。</translation>
    </message>
    <message>
        <source>Pause the breaks</source>
        <translation>暂停休息提醒</translation>
    </message>
    <message>
        <source>Start the breaks again</source>
        <translation>重新开始休息提醒</translation>
    </message>
    <message>
        <source>Open the settings</source>
        <translation>打开设置</translation>
    </message>
    <message>
        <source>Look for a newer version</source>
        <translation>查找新版本</translation>
    </message>
    <message>
        <source>Write to the makers of Lulltide</source>
        <translation>给 Lulltide 的作者写信</translation>
    </message>
    <message>
        <source>About Lulltide</source>
        <translation>关于 Lulltide</translation>
    </message>
    <message>
        <source>Quit Lulltide</source>
        <translation>退出 Lulltide</translation>
    </message>
    <message>
        <source>Postpone the coming break</source>
        <translation>推迟即将到来的休息</translation>
    </message>
</context>
<context>
    <name>UpdateDialog</name>
    <message>
        <source>Software Update</source>
        <translation>软件更新</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Download</source>
        <translation>下载</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>好</translation>
    </message>
    <message>
        <source>Checking for updates…</source>
        <translation>正在检查更新…</translation>
    </message>
    <message>
        <source>You&apos;re up to date!</source>
        <translation>已是最新版本！</translation>
    </message>
    <message>
        <source>%1 %2 is currently the newest version available.</source>
        <translation>%1 %2 是目前可用的最新版本。</translation>
    </message>
    <message>
        <source>Release Notes</source>
        <translation>更新说明</translation>
    </message>
    <message>
        <source>Later</source>
        <translation>以后</translation>
    </message>
    <message>
        <source>A new version of %1 is available!</source>
        <translation>%1 有新版本可用！</translation>
    </message>
    <message>
        <source>%1 %2 is now available — you have %3. Your package manager installs it.</source>
        <translation>%1 %2 现已推出，你的版本是 %3。请用软件包管理器安装。</translation>
    </message>
    <message>
        <source>%1 could not check for updates.</source>
        <translation>%1 无法检查更新。</translation>
    </message>
</context>
<context>
    <name>Updater</name>
    <message>
        <source>the feed address %1 is not HTTPS</source>
        <translation>更新源地址 %1 不是 HTTPS</translation>
    </message>
    <message>
        <source>the update server did not answer in time</source>
        <translation>更新服务器没有及时回应</translation>
    </message>
    <message>
        <source>the update server did not answer in time (%1 s)</source>
        <translation>更新服务器没有及时回应（%1 秒）</translation>
    </message>
    <message>
        <source>the update server sent too many redirects (more than %1)</source>
        <translation>更新服务器的重定向次数过多（超过 %1 次）</translation>
    </message>
    <message>
        <source>the update server could not be found; are you online?</source>
        <translation>找不到更新服务器；你联网了吗？</translation>
    </message>
    <message>
        <source>the update server refused the connection</source>
        <translation>更新服务器拒绝了连接</translation>
    </message>
    <message>
        <source>the update server&apos;s certificate could not be trusted</source>
        <translation>更新服务器的证书不可信</translation>
    </message>
    <message>
        <source>the update feed was not found on the server (HTTP 404)</source>
        <translation>服务器上找不到更新源（HTTP 404）</translation>
    </message>
    <message>
        <source>the update server answered with an error (HTTP %1)</source>
        <translation>更新服务器返回了错误（HTTP %1）</translation>
    </message>
    <message>
        <source>the update feed could not be fetched: </source>
        <translation>无法获取更新源：</translation>
    </message>
    <message>
        <source>the feed address is invalid</source>
        <translation>更新源地址无效</translation>
    </message>
    <message>
        <source>the update server sent us to %1, which is not HTTPS</source>
        <translation>更新服务器把我们转到了 %1，它不是 HTTPS</translation>
    </message>
    <message>
        <source>the update feed is larger than 1 MiB</source>
        <translation>更新源大于 1 MiB</translation>
    </message>
    <message>
        <source>the check was cancelled</source>
        <translation>检查已取消</translation>
    </message>
</context>
</TS>
