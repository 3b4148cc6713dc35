// SPDX-License-Identifier: MIT
#include "Platform/Linux/LanguageDetector.h"

#include <array>
#include <cstdio>

#include <QRegularExpression>
#include <QStringList>
#include <cld2/public/compact_lang_det.h>
#include <cld2/public/encodings.h>

namespace tovi::LanguageDetector {

namespace {

constexpr qsizetype sampleLength = 20000;
// About as many letters of an alphabet say what one ideograph or syllable says.
constexpr int lettersPerIdeograph = 3;

/// Frequent characters that only one of the three writes so.
constexpr QStringView simplified =
    u"们这国来时说会对为学产进过还发动种电开问题机关长见车东马鸟鱼门间闻书写买卖读听语话请谢认识让谁边"
    u"远运达选连迟适钟钱银铁错镇阳阴阶际陆队难顶项顺须预领颜风飞饭饮馆验骑鸡黄龙龟齐个万与专业丛两严丧"
    u"临丽举义乌乐习乡亚亲亿仅从仓仪价众优伙伟传伤伦体余侧侨俭债倾偿儿党兰兴养兽内冈军农冲决况冻净减几"
    u"凤击划刘则刚创别剂剧劝办务劳势区医华协单卫厂厅历压厌县参双变叙叶号叹后吓吗启员响园围图圆圣场坏块"
    u"坚坛坟声处备复够头夸夺奋奖妆妇妈娱婴孙宁宝实审宽宾导寿将尔尘尝层属岁岛岭币帅师帐帮带庄庆库应庙废"
    u"广张弹强归当录径忆忧怀态总恋恶悬惊惯愿战户执扩扫扬扰抚抢护报担拟拥择挂挡挤损换据掷敌数断无旧显晓"
    u"术权条杨极构枪样档桥梦检欢残毕气汇汉汤沟没泪泽洁测济浓涛润涨渐温湾湿满滚灭灯灵炉点烂烟热爱爷牵独"
    u"狭狱猎玛环现画疗疯监盐盖盘码矿确礼祸离积称稳穷窃竞笔笼筑简签篮类粮紧纠红约级纪纯纸纳";
constexpr QStringView traditional =
    u"們這國來時說會對為學產進過還發動種電開問題機關長見車東馬鳥魚門間聞書寫買賣讀聽語話請謝認識讓誰邊"
    u"遠運達選連遲適鐘錢銀鐵錯鎮陽陰階際陸隊難頂項順須預領顏風飛飯飲館驗騎雞黃龍龜齊個萬與專業叢兩嚴喪"
    u"臨麗舉義烏樂習鄉亞親億僅從倉儀價眾優夥偉傳傷倫體餘側僑儉債傾償兒黨蘭興養獸岡軍農衝決況凍淨減幾鳳"
    u"擊劃劉則剛創別劑劇勸辦務勞勢區醫華協單衛廠廳歷壓厭縣參雙變敘臺葉號嘆後嚇嗎啟員響園圍圖圓聖場壞塊"
    u"堅壇墳聲處備復夠頭誇奪奮獎妝婦媽娛嬰孫寧寶實審寬賓導壽將爾塵嘗層屬歲島嶺幣帥師帳幫帶莊慶庫應廟廢"
    u"廣張彈強歸當錄徑憶憂懷態總戀惡懸驚慣願戰執擴掃揚擾撫搶護報擔擬擁擇掛擋擠損換據擲敵數斷無舊顯曉術"
    u"權條楊極構槍樣檔橋夢檢歡殘畢氣匯漢湯溝沒淚澤潔測濟濃濤潤漲漸溫灣濕滿滾滅燈靈爐點爛煙熱愛爺牽獨狹"
    u"獄獵瑪環現畫療瘋監鹽蓋盤碼礦確禮禍離積稱穩窮竊競筆籠築簡簽籃類糧緊糾紅約級紀純紙納";
constexpr QStringView japanese =
    u"駅円図実気対働込峠広発売読続変戦総経済単帰桜歩毎両雑労験検県権顔観関鉄銭転伝辺沢渋仏払択滝浜渇黒"
    u"乗亜価児処剣剤勲卆収圏塩壊壱奥嬢専従徳悪戯拝挙様浄涙満焼犠獣畑稲穂穏窓竜粛絵緑繊聴脳臓舗芸茎薬蔵"
    u"覚触訳誉譲豊賛軽辞遅酔醸釈鋭隠険隣霊頬頼駆騒髄髪鶏麺黙齢匂枠栃塀搾腺";

struct Counts
{
    int latin = 0;
    int cyrillic = 0;
    int kana = 0;
    int hangul = 0;
    int han = 0;
    int other = 0;
    int simplifiedOnly = 0;
    int traditionalOnly = 0;
    int japaneseOnly = 0;

    int ideographs() const { return han + kana + hangul; }
};

Counts count(const QString &text)
{
    Counts counts;
    for (const char32_t c : text.toUcs4()) {
        if (!QChar::isLetter(c))
            continue;
        switch (QChar::script(c)) {
        case QChar::Script_Latin:
            ++counts.latin;
            break;
        case QChar::Script_Cyrillic:
            ++counts.cyrillic;
            break;
        case QChar::Script_Hiragana:
        case QChar::Script_Katakana:
            ++counts.kana;
            break;
        case QChar::Script_Hangul:
            ++counts.hangul;
            break;
        case QChar::Script_Han: {
            ++counts.han;
            if (c > 0xffff)
                break;
            const QChar character(static_cast<char16_t>(c));
            const bool isSimplified = simplified.contains(character);
            const bool isTraditional = traditional.contains(character);
            counts.simplifiedOnly += isSimplified && !isTraditional;
            counts.traditionalOnly += isTraditional && !isSimplified;
            counts.japaneseOnly += japanese.contains(character) && !isSimplified && !isTraditional;
            break;
        }
        default:
            // Letters that belong to several scripts (the long vowel mark) decide nothing.
            if (QChar::script(c) != QChar::Script_Common)
                ++counts.other;
        }
    }
    return counts;
}

QString ideographicLanguage(const Counts &counts)
{
    if (counts.hangul > counts.han + counts.kana)
        return QStringLiteral("ko");
    // A single borrowed kana does not make a Chinese text Japanese.
    if (counts.kana * 8 > counts.han)
        return QStringLiteral("ja");
    if (counts.hangul * 3 > counts.han)
        return QStringLiteral("ko");
    // Japanese also writes many of the traditional forms.
    if (counts.japaneseOnly > counts.simplifiedOnly && counts.japaneseOnly * 3 >= counts.traditionalOnly)
        return QStringLiteral("ja");
    return counts.traditionalOnly > counts.simplifiedOnly ? QStringLiteral("zh-TW") : QStringLiteral("zh-CN");
}

/// The library's best guess, of ISO 639 codes; empty when it has none.
QString guess(const QByteArray &text, const char *languageHint)
{
    const CLD2::CLDHints hints{languageHint, nullptr, CLD2::UNKNOWN_ENCODING, CLD2::UNKNOWN_LANGUAGE};
    std::array<CLD2::Language, 3> languages{};
    std::array<int, 3> percents{};
    std::array<double, 3> scores{};
    int textBytes = 0;
    bool isReliable = false;
    const CLD2::Language language = CLD2::ExtDetectLanguageSummary(
        text.constData(), static_cast<int>(text.size()), true, &hints, CLD2::kCLDFlagBestEffort,
        languages.data(), percents.data(), scores.data(), nullptr, &textBytes, &isReliable);
    if (language == CLD2::UNKNOWN_LANGUAGE)
        return {};
    return QString::fromLatin1(CLD2::LanguageCode(language));
}

QString latinLanguage(const QString &text)
{
    static const QStringList known{QStringLiteral("en"), QStringLiteral("fr"), QStringLiteral("de"),
                                   QStringLiteral("es")};
    // Letters that only one of the four uses speak louder than statistics of a few words.
    struct Letters
    {
        QStringView letters;
        const char *language;
    };
    static constexpr std::array<Letters, 3> telling{Letters{u"¿¡ñÑ", "es"}, Letters{u"œŒçÇùÙ", "fr"},
                                                    Letters{u"ßäÄöÖ", "de"}};
    const char *hint = nullptr;
    for (const Letters &own : telling) {
        if (std::any_of(text.begin(), text.end(), [&](QChar c) { return own.letters.contains(c); })) {
            hint = hint ? nullptr : own.language;
            if (!hint)
                break;
        }
    }
    const QByteArray bytes = text.toUtf8();
    const QString language = guess(bytes, hint);
    if (known.contains(language))
        return language;
    // One or two words that look like a rare language are more likely of a frequent one.
    const bool isShort = text.simplified().count(u' ') < 3;
    if (!isShort && !language.isEmpty())
        return language;
    const QString likely = guess(bytes, "en,es,fr,de");
    return known.contains(likely) ? likely : QStringLiteral("en");
}

QString cyrillicLanguage(const QString &text)
{
    static const QRegularExpression notRussian(QStringLiteral("[іїєґўјљњћђџѓќѕІЇЄҐЎЈЉЊЋЂЏЃЌЅ]"));
    const QByteArray bytes = text.toUtf8();
    const QString language = guess(bytes, text.contains(notRussian) ? nullptr : "ru");
    return language.isEmpty() ? QStringLiteral("ru") : language;
}

} // namespace

std::optional<QString> dominantLanguage(const QString &text)
{
    static const QRegularExpression addresses(QStringLiteral("\\S+://\\S+|\\S+@\\S+"));
    const QString sample = text.left(sampleLength).replace(addresses, QStringLiteral(" "));
    const Counts counts = count(sample);
    const int ideographs = counts.ideographs() * lettersPerIdeograph;
    const int most = std::max({counts.latin, counts.cyrillic, ideographs, counts.other});
    if (most == 0)
        return std::nullopt;
    if (most == ideographs)
        return ideographicLanguage(counts);
    if (most == counts.cyrillic)
        return cyrillicLanguage(sample);
    if (most == counts.latin)
        return latinLanguage(sample);
    const QString language = guess(sample.toUtf8(), nullptr);
    return language.isEmpty() ? QStringLiteral("und") : language;
}

} // namespace tovi::LanguageDetector
