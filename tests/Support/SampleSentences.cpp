// SPDX-License-Identifier: MIT
#include "Support/SampleSentences.h"

#include <QRandomGenerator>

namespace tovi {

namespace {

/// Sentences with places to fill: %1 who or what, %2 another thing, %3 a number, %4 a time.
struct Grammar
{
    const char *name;
    QList<const char *> sentences;
    QList<const char *> things;
    QList<const char *> times;
};

const Grammar &grammarOf(TextKind kind)
{
    static const Grammar english{
        "English",
        {"The %1 was moved to the %2 %4.", "Could not save the %1: only %3 MB are left.",
         "Please check the %1 before you send it.", "%3 people have read the %2 %4.",
         "Why does the %1 look different from the %2?", "Nobody expected the %1 to arrive %4!",
         "\"Quick %1\" (version %3.2) needs a newer %2.", "Press Ctrl+K to open the %1.",
         "They walked along the river and talked about the %2.", "Each %1 costs $%3.99, including the %2.",
         "Sorry, the %1 is busy; try again %4.", "A small %1 is often worth more than a large %2."},
        {"window", "journey", "kitchen garden", "backup", "exchange rate", "photograph", "weekly report",
         "network drive", "jazz quartet", "boarding pass", "old lighthouse", "question", "payment",
         "village school", "keyboard layout", "museum ticket"},
        {"yesterday", "in the evening", "before Friday", "at 10:45", "last winter", "as soon as possible"}};
    static const Grammar simplified{
        "Simplified Chinese",
        {"%4我们把%1交给了%2。", "无法保存%1，只剩下%3兆空间。", "请在发送之前检查%1。",
         "已有%3人阅读过这篇关于%2的文章。", "为什么%1和%2看起来不一样？", "没有人想到%1会在%4到达！",
         "《%1》第%3版需要更新的%2。", "按回车键打开%1。", "他们沿着河边散步，谈论着%2。",
         "每份%1售价%3元，包括%2。", "对不起，%1正忙，请%4再试。", "小小的%1往往比巨大的%2更有价值。"},
        {"窗口", "旅行计划", "厨房", "备份文件", "汇率", "照片", "工作报告", "网络硬盘", "音乐会", "登机牌",
         "旧灯塔", "问题", "付款记录", "乡村学校", "键盘布局", "博物馆门票"},
        {"昨天", "晚上", "星期五之前", "上午十点", "去年冬天", "今天下午"}};
    static const Grammar traditional{
        "Traditional Chinese",
        {"%4我們把%1交給了%2。", "無法儲存%1，只剩下%3 MB 空間。", "請在傳送之前檢查%1。",
         "已有%3人閱讀過這篇關於%2的文章。", "為什麼%1和%2看起來不一樣？", "沒有人想到%1會在%4抵達！",
         "「%1」第%3版需要更新的%2。", "按下輸入鍵開啟%1。", "他們沿著河邊散步，談論著%2。",
         "每份%1售價%3元，包括%2。", "抱歉，%1正忙碌中，請%4再試。", "小小的%1往往比龐大的%2更有價值。"},
        {"視窗", "旅遊計畫", "廚房", "備份檔案", "匯率", "照片", "工作報告", "網路硬碟", "音樂會", "登機證",
         "舊燈塔", "問題", "付款紀錄", "鄉村學校", "鍵盤配置", "博物館門票"},
        {"昨天", "晚上", "星期五之前", "上午十點", "去年冬天", "今天下午"}};
    static const Grammar japanese{
        "Japanese",
        {"%4、%1を%2に移動しました。", "%1を保存できません。残りは%3MBです。",
         "送信する前に%1を確認してください。", "%2についての記事は%3人に読まれています。",
         "どうして%1と%2は違って見えるのですか？", "%4に%1が届くとは誰も思わなかった！",
         "「%1」第%3版には新しい%2が必要です。", "Enterキーを押すと%1が開きます。",
         "二人は川沿いを歩きながら、%2の話をしていた。", "%1は一つ%3円で、%2も含まれます。",
         "申し訳ありませんが、%1は使用中です。", "小さな%1は、大きな%2よりも価値があることが多い。"},
        {"ウィンドウ", "旅行の計画", "台所", "バックアップ", "為替レート", "写真", "週間レポート",
         "ネットワークドライブ", "演奏会", "搭乗券", "古い灯台", "質問", "支払い", "村の学校", "キーボード",
         "博物館の入場券"},
        {"昨日", "夕方", "金曜日まで", "午前十時", "去年の冬", "今朝"}};
    static const Grammar korean{
        "Korean",
        {"%4 %1 파일을 %2 폴더로 옮겼습니다.", "%1 항목을 저장할 수 없습니다. 남은 공간은 %3MB입니다.",
         "보내기 전에 %1 내용을 확인하세요.", "지금까지 %3명이 %2에 대한 글을 읽었습니다.",
         "왜 %1 화면과 %2 화면이 다르게 보입니까?", "%4 %1 소식이 올 줄은 아무도 몰랐다!",
         "\"%1\" 제%3판에는 새로운 %2 기능이 필요합니다.", "Enter 키를 누르면 %1 창이 열립니다.",
         "두 사람은 강가를 걸으며 %2 이야기를 나누었다.", "%1 하나에 %3원이며 %2 요금도 포함됩니다.",
         "죄송합니다. %1 작업이 끝나면 다시 시도하세요.", "작은 %1 하나가 큰 %2보다 더 귀할 때가 많다."},
        {"여행 계획", "부엌", "백업", "환율", "사진", "주간 보고서", "네트워크 드라이브", "음악회", "탑승권",
         "오래된 등대", "질문", "결제", "시골 학교", "자판 배열", "박물관 입장권", "우편물"},
        {"어제", "저녁에", "금요일까지", "오전 열 시에", "지난겨울", "오늘 아침"}};
    static const Grammar mixed{
        "mixed",
        {"在 Settings 里打开 %1，然后点击 Restart。", "下载 Firefox 115.3 需要 %3 秒，请稍候 (%1)。",
         "Error %3: 找不到文件 report_final.pdf", "GitHub の Issue を開いて、%2 を確認する。",
         "新しい %1 は Windows 11 と macOS に対応しています。",
         "PDF 파일을 Google Drive 폴더로 옮겼습니다 (%3 KB).",
         "Wi-Fi 연결을 확인한 후 Update 버튼을 누르세요.", "請先登入 Account 頁面，再選擇 Language。",
         "The word \"旅行\" means \"travel\" in %3 of the notes.",
         "使用 Python 3.%3 執行 main.py 時發生錯誤。"},
        {"README.md", "Docker", "Network", "Terminal", "Bluetooth", "Safari", "VPN", "Dashboard"},
        {"today"}};
    switch (kind) {
    case TextKind::english:
        return english;
    case TextKind::simplifiedChinese:
        return simplified;
    case TextKind::traditionalChinese:
        return traditional;
    case TextKind::japanese:
        return japanese;
    case TextKind::korean:
        return korean;
    case TextKind::mixed:
        break;
    }
    return mixed;
}

QString pick(const QList<const char *> &list, QRandomGenerator &random)
{
    return QString::fromUtf8(list.at(random.bounded(list.size())));
}

} // namespace

QString nameOf(TextKind kind)
{
    return QLatin1String(grammarOf(kind).name);
}

QString sampleSentence(TextKind kind, QRandomGenerator &random)
{
    const Grammar &grammar = grammarOf(kind);
    QString sentence = pick(grammar.sentences, random);
    sentence.replace(QStringLiteral("%1"), pick(grammar.things, random));
    sentence.replace(QStringLiteral("%2"), pick(grammar.things, random));
    sentence.replace(QStringLiteral("%3"), QString::number(random.bounded(2, 980)));
    sentence.replace(QStringLiteral("%4"), pick(grammar.times, random));
    return sentence;
}

} // namespace tovi
