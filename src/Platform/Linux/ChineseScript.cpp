// SPDX-License-Identifier: MIT
#include "Platform/Linux/ChineseScript.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include <QFont>
#include <QPainter>

namespace tovi {

namespace {

// A line's picture shows small text enlarged to twice its size, which is no news to a comparison.
constexpr int reduction = 2;
constexpr int smallestLetter = 8; ///< pixels
constexpr int largestLetter = 40; ///< pixels
constexpr qsizetype most = 10;    ///< characters of a line that are compared
constexpr double unlike = 0.35;   ///< what is so unlike both forms is another character

/// Frequent characters, each Simplified one before its Traditional form.
constexpr QStringView pairs =
    u"们們这這国國来來时時说說会會对對为為学學产產进進过過还還发發动動种種电電开開问問题題机機关關长長见見"
    u"车車东東马馬鸟鳥鱼魚门門间間闻聞书書写寫买買卖賣读讀听聽语語话話请請谢謝认認识識让讓谁誰边邊远遠运運"
    u"达達选選连連迟遲适適钟鐘钱錢银銀铁鐵错錯镇鎮阳陽阴陰阶階际際陆陸队隊难難顶頂项項顺順须須预預领領颜顏"
    u"风風飞飛饭飯饮飲馆館验驗骑騎鸡雞黄黃龙龍龟龜齐齊个個万萬与與专專业業丛叢两兩严嚴丧喪临臨丽麗举舉义義"
    u"乌烏乐樂习習乡鄉亚亞亲親亿億仅僅从從仓倉仪儀价價众眾优優伟偉传傳伤傷伦倫体體侧側侨僑俭儉债債倾傾偿償"
    u"儿兒党黨兰蘭兴興养養兽獸内內冈岡军軍农農冲衝决決况況冻凍净淨减減几幾凤鳳击擊刘劉则則刚剛创創别別剂劑"
    u"剧劇劝勸办辦务務劳勞势勢区區医醫华華协協单單卫衛厂廠厅廳历歷压壓厌厭县縣参參双雙变變叙敘叶葉号號叹嘆"
    u"吗嗎启啓员員响響园園围圍图圖圆圓圣聖场場坏壞块塊坚堅坛壇坟墳声聲处處备備复復够夠头頭夺奪奋奮奖獎妆妝"
    u"妇婦妈媽娱娛婴嬰孙孫宁寧宝寶实實审審宽寬宾賓导導寿壽将將尔爾尘塵尝嘗层層属屬岁歲岛島岭嶺币幣帅帥师師"
    u"帐帳帮幫带帶庄莊庆慶库庫应應庙廟废廢广廣张張弹彈强強归歸当當录錄径徑忆憶忧憂怀懷态態总總恋戀恶惡悬懸"
    u"惊驚惯慣愿願战戰户戶执執扩擴扫掃扬揚扰擾抚撫抢搶护護报報担擔拟擬拥擁择擇挂掛挡擋挤擠损損换換据據掷擲"
    u"敌敵数數断斷无無旧舊显顯晓曉术術权權条條杨楊极極构構枪槍样樣档檔桥橋梦夢检檢欢歡残殘毕畢气氣汇匯汉漢"
    u"汤湯沟溝没沒泪淚泽澤洁潔测測济濟浓濃涛濤润潤涨漲渐漸温溫湾灣湿濕满滿滚滾灭滅灯燈灵靈炉爐点點烂爛烟煙"
    u"热熱爱愛爷爺牵牽独獨狭狹狱獄猎獵玛瑪环環现現画畫疗療疯瘋监監盐鹽盖蓋盘盤码碼矿礦确確礼禮祸禍离離积積"
    u"称稱稳穩穷窮窃竊竞競笔筆笼籠筑築简簡签簽篮籃类類粮糧紧緊纠糾红紅约約级級纪紀纯純纸紙纳納经經结結给給"
    u"统統线線练練组組细細终終绍紹绝絕继繼续續维維编編缩縮网網络絡罗羅节節药藥获獲营營蓝藍虑慮虽雖视視规規"
    u"觉覺观觀计計订訂训訓议議记記许許论論设設证證评評诉訴试試诗詩诚誠详詳误誤诸諸课課调調谈談负負财財责責"
    u"败敗货貨质質购購贴貼贵貴费費资資赏賞赛賽赢贏转轉轮輪软軟轻輕载載较較辆輛输輸辑輯迁遷针針钥鑰锁鎖键鍵"
    u"闭閉闪閃闲閒闹鬧阅閱随隨隐隱静靜页頁顾顧频頻额額飘飄骂罵鲜鮮鸣鳴麦麥脑腦腾騰荣榮荐薦葱蔥蒋蔣虫蟲补補"
    u"裤褲览覽触觸誉譽讨討讲講词詞译譯询詢该該诺諾谊誼谋謀谓謂谦謙谨謹账賬贡貢贪貪贫貧贸貿贺賀赚賺赶趕跃躍"
    u"践踐轨軌轰轟辈輩辉輝辩辯辽遼迈邁违違逊遜递遞遗遺邓鄧邮郵邻鄰郑鄭酱醬释釋锋鋒锐銳锻鍛镜鏡闯闖阔闊陈陳"
    u"险險韩韓颗顆颖穎颤顫饰飾饱飽饼餅馈饋驱驅驾駕骤驟鲁魯鹅鵝鸭鴨齿齒伞傘冯馮凉涼凑湊凭憑删刪剑劍劲勁励勵"
    u"胜勝厕廁厢廂厦廈厨廚哑啞哗嘩唤喚啸嘯喷噴团團坝壩垄壟垒壘坠墜垫墊墙牆壳殼夹夾宠寵宪憲寻尋屉屜岂豈岗崗"
    u"峡峽帘簾异異弃棄弥彌弯彎彻徹恳懇恼惱悦悅惧懼惨慘惩懲惭慚愤憤慑懾懒懶戏戲扑撲抛拋拢攏拣揀拦攔拧擰拨撥"
    u"挚摯挠撓挣掙挥揮捞撈掸撣掺摻搅攪携攜摄攝摆擺摇搖摊攤撑撐斋齋斩斬昼晝晋晉晒曬晕暈暂暫杀殺杂雜柜櫃柠檸"
    u"标標栈棧栋棟栏欄树樹桨槳楼樓欧歐殴毆毙斃沪滬泼潑洒灑浆漿浇澆浑渾涩澀渊淵渔漁溃潰滤濾滥濫滨濱滩灘灾災"
    u"炼煉烁爍烛燭烦煩烧燒烫燙牺犧状狀狈狽狮獅献獻珑瓏琐瑣瑶瑤畅暢疮瘡痒癢瘾癮皱皺盏盞盗盜睁睜瞒瞞矫矯砖磚"
    u"砚硯础礎硕碩碍礙祷禱秃禿窍竅窜竄窝窩窥窺竖竪笋筍筛篩筹籌箩籮纱紗纲綱纵縱纷紛纹紋纺紡纽紐绅紳织織绑綁"
    u"绒絨绕繞绘繪绩績绪緒绳繩绵綿绸綢综綜绿綠缆纜缎緞缓緩缘緣缚縛缝縫缠纏缴繳";

struct Forms
{
    QChar simplified;
    QChar traditional;
};

std::optional<Forms> formsOf(QChar c)
{
    const qsizetype at = pairs.indexOf(c);
    if (at < 0)
        return std::nullopt;
    return Forms{pairs[at & ~1], pairs[at | 1]};
}

/// A character's place in the line's picture.
struct Place
{
    QChar character;
    double center = 0;
    bool beginsRun = false; ///< others than ideographs stand before it
};

std::vector<Place> placesOf(const TesseractReading &reading)
{
    std::vector<Place> places;
    bool isApart = true;
    for (const TesseractReading::Word &word : reading.words) {
        isApart |= word.hasBlankBefore;
        const double width = double(word.end - word.begin) / double(word.text.size());
        for (qsizetype i = 0; i < word.text.size(); ++i) {
            if (isIdeograph(word.text[i]))
                places.push_back({word.text[i], word.begin + (double(i) + 0.5) * width, isApart});
            isApart = !isIdeograph(word.text[i]);
        }
    }
    return places;
}

/// The distance of neighbours; 0 where there are none.
double pitchOf(const std::vector<Place> &places)
{
    std::vector<double> pitches;
    for (size_t i = 1; i < places.size(); ++i) {
        if (!places[i].beginsRun)
            pitches.push_back(places[i].center - places[i - 1].center);
    }
    if (pitches.empty())
        return 0;
    const auto middle = pitches.begin() + std::ptrdiff_t(pitches.size() / 2);
    std::nth_element(pitches.begin(), middle, pitches.end());
    return *middle;
}

} // namespace

ChineseScript::Shape ChineseScript::draw(QChar character, int size)
{
    Shape shape{.image = QImage(size, size, QImage::Format_Grayscale8)};
    shape.image.fill(Qt::white);
    QFont font;
    font.setPixelSize(size);
    QPainter painter(&shape.image);
    painter.setFont(font);
    painter.drawText(shape.image.rect(), Qt::AlignCenter | Qt::TextDontClip, QString(character));
    painter.end();
    for (int y = 0; y < size; ++y) {
        const uchar *row = shape.image.constScanLine(y);
        for (int x = 0; x < size; ++x) {
            shape.sum += row[x];
            shape.squares += row[x] * row[x];
        }
    }
    return shape;
}

const ChineseScript::Shape &ChineseScript::shape(QChar character, int size)
{
    const std::scoped_lock lock(m_mutex);
    const auto [found, isNew] = m_shapes.try_emplace({character.unicode(), size});
    if (isNew)
        found->second = draw(character, size);
    return found->second;
}

/// How well a shape fits a part of the picture, 1 being its likeness. Its sums fit into int: it is small.
double ChineseScript::correlation(const Shape &shape, const QImage &line, int left, int top)
{
    const int size = shape.image.width();
    int sum = 0;
    int squares = 0;
    int products = 0;
    for (int y = 0; y < size; ++y) {
        const uchar *row = shape.image.constScanLine(y);
        const uchar *rowOfLine = line.constScanLine(top + y) + left;
        for (int x = 0; x < size; ++x) {
            sum += rowOfLine[x];
            squares += rowOfLine[x] * rowOfLine[x];
            products += row[x] * rowOfLine[x];
        }
    }
    const double count = double(size) * size;
    const double spread =
        (shape.squares - double(shape.sum) * shape.sum / count) * (squares - double(sum) * sum / count);
    return spread > 0 ? (products - double(shape.sum) * sum / count) / std::sqrt(spread) : 0;
}

/// How well a character of about the size fits the surroundings of its place, as readings say that roughly.
double ChineseScript::likeness(QChar character, const QImage &line, int center, int typicalSize)
{
    double best = 0;
    for (int size = typicalSize - 1; size <= typicalSize + 1; ++size) {
        const Shape &drawn = shape(character, size);
        const int last = std::min(line.width() - size, center);
        for (int left = std::max(0, center - size); left <= last; ++left) {
            for (int top = 0; top + size <= line.height(); ++top)
                best = std::max(best, correlation(drawn, line, left, top));
        }
    }
    return best;
}

double ChineseScript::traditionalLook(const TesseractReading &reading, const QImage &line)
{
    const std::vector<Place> places = placesOf(reading);
    const int size = int(std::lround(pitchOf(places) / reduction));
    if (size < smallestLetter || size > largestLetter)
        return 0;
    const QImage small = line.scaled(line.size() / reduction, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                             .convertToFormat(QImage::Format_Grayscale8);
    double look = 0;
    qsizetype compared = 0;
    for (const Place &place : places) {
        const auto forms = formsOf(place.character);
        if (!forms)
            continue;
        const int center = int(place.center) / reduction;
        const double simplified = likeness(forms->simplified, small, center, size);
        const double traditional = likeness(forms->traditional, small, center, size);
        if (std::max(simplified, traditional) > unlike)
            look += traditional - simplified;
        if (++compared == most || std::abs(look) >= clearLook)
            break;
    }
    return look;
}

} // namespace tovi
