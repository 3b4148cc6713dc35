// SPDX-License-Identifier: MIT
#include "Localization/RecognitionTexts.h"

namespace tovi {

QString RecognitionTexts::notInstalled(AppLanguage language)
{
    switch (language) {
    case AppLanguage::zhHans:
        return QStringLiteral("未安装文字识别。\n请安装 Tesseract 及所需语言的数据。");
    case AppLanguage::zhHant:
        return QStringLiteral("未安裝文字辨識。\n請安裝 Tesseract 及所需語言的資料。");
    case AppLanguage::ja:
        return QStringLiteral("文字認識がインストールされていません。\nTesseract "
                              "と必要な言語のデータをインストールしてください。");
    case AppLanguage::ko:
        return QStringLiteral(
            "텍스트 인식이 설치되어 있지 않습니다.\nTesseract와 필요한 언어의 데이터를 설치하세요.");
    case AppLanguage::fr:
        return QStringLiteral("La reconnaissance de texte n’est pas installée.\nInstallez Tesseract et les "
                              "données de vos langues.");
    case AppLanguage::de:
        return QStringLiteral(
            "Die Texterkennung ist nicht installiert.\nInstalliere Tesseract und die Daten deiner Sprachen.");
    case AppLanguage::es:
        return QStringLiteral(
            "El reconocimiento de texto no está instalado.\nInstala Tesseract y los datos de tus idiomas.");
    case AppLanguage::ru:
        return QStringLiteral(
            "Распознавание текста не установлено.\nУстановите Tesseract и данные нужных языков.");
    case AppLanguage::system:
    case AppLanguage::en:
        break;
    }
    return QStringLiteral(
        "Text recognition is not installed.\nInstall Tesseract and the data of your languages.");
}

} // namespace tovi
