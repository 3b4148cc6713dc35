// SPDX-License-Identifier: MIT
#include "Localization/UpdateTexts.h"

namespace tovi {

UpdateTexts UpdateTexts::in(AppLanguage language)
{
    switch (language) {
    case AppLanguage::zhHans:
        return {.title = QStringLiteral("软件更新"),
                .checking = QStringLiteral("正在检查更新…"),
                .upToDate = QStringLiteral("Tovi %@ 已是最新版本。"),
                .available = QStringLiteral("Tovi %@ 现已发布，当前版本为 %@。"),
                .download = QStringLiteral("下载…"),
                .close = QStringLiteral("关闭"),
                .notes = QStringLiteral("更新内容"),
                .switchedOff = QStringLiteral("此 Tovi 的更新由其安装来源提供。"),
                .noFeed = QStringLiteral("此 Tovi 未设置更新地址。"),
                .insecure = QStringLiteral("更新地址不安全。"),
                .unreachable = QStringLiteral("无法加载更新，请稍后再试。"),
                .unreadable = QStringLiteral("无法读取更新列表。")};
    case AppLanguage::zhHant:
        return {.title = QStringLiteral("軟體更新"),
                .checking = QStringLiteral("正在檢查更新…"),
                .upToDate = QStringLiteral("Tovi %@ 已是最新版本。"),
                .available = QStringLiteral("Tovi %@ 現已推出，目前版本為 %@。"),
                .download = QStringLiteral("下載…"),
                .close = QStringLiteral("關閉"),
                .notes = QStringLiteral("更新內容"),
                .switchedOff = QStringLiteral("此 Tovi 的更新由其安裝來源提供。"),
                .noFeed = QStringLiteral("此 Tovi 未設定更新位址。"),
                .insecure = QStringLiteral("更新位址不安全。"),
                .unreachable = QStringLiteral("無法載入更新，請稍後再試。"),
                .unreadable = QStringLiteral("無法讀取更新列表。")};
    case AppLanguage::ja:
        return {.title = QStringLiteral("ソフトウェアアップデート"),
                .checking = QStringLiteral("アップデートを確認中…"),
                .upToDate = QStringLiteral("Tovi %@ は最新バージョンです。"),
                .available = QStringLiteral("Tovi %@ が利用できます。現在のバージョンは %@ です。"),
                .download = QStringLiteral("ダウンロード…"),
                .close = QStringLiteral("閉じる"),
                .notes = QStringLiteral("新機能"),
                .switchedOff = QStringLiteral("この Tovi のアップデートはインストール元から提供されます。"),
                .noFeed = QStringLiteral("この Tovi にはアップデートの確認先が設定されていません。"),
                .insecure = QStringLiteral("アップデートのアドレスが安全ではありません。"),
                .unreachable =
                    QStringLiteral("アップデートを読み込めませんでした。後でもう一度お試しください。"),
                .unreadable = QStringLiteral("アップデートの一覧を読み取れませんでした。")};
    case AppLanguage::ko:
        return {.title = QStringLiteral("소프트웨어 업데이트"),
                .checking = QStringLiteral("업데이트 확인 중…"),
                .upToDate = QStringLiteral("Tovi %@은(는) 최신 버전입니다."),
                .available = QStringLiteral("Tovi %@을(를) 사용할 수 있습니다. 현재 버전은 %@입니다."),
                .download = QStringLiteral("다운로드…"),
                .close = QStringLiteral("닫기"),
                .notes = QStringLiteral("새로운 기능"),
                .switchedOff = QStringLiteral("이 Tovi의 업데이트는 설치한 곳에서 제공됩니다."),
                .noFeed = QStringLiteral("이 Tovi에는 업데이트 주소가 설정되어 있지 않습니다."),
                .insecure = QStringLiteral("업데이트 주소가 안전하지 않습니다."),
                .unreachable = QStringLiteral("업데이트를 불러올 수 없습니다. 나중에 다시 시도하세요."),
                .unreadable = QStringLiteral("업데이트 목록을 읽을 수 없습니다.")};
    case AppLanguage::fr:
        return {.title = QStringLiteral("Mise à jour de logiciels"),
                .checking = QStringLiteral("Recherche de mises à jour…"),
                .upToDate = QStringLiteral("Tovi %@ est la version la plus récente."),
                .available = QStringLiteral("Tovi %@ est disponible. Vous avez %@."),
                .download = QStringLiteral("Télécharger…"),
                .close = QStringLiteral("Fermer"),
                .notes = QStringLiteral("Nouveautés"),
                .switchedOff = QStringLiteral(
                    "Les mises à jour de cette copie de Tovi viennent de sa source d’installation."),
                .noFeed = QStringLiteral("Cette copie de Tovi ne sait pas où chercher les mises à jour."),
                .insecure = QStringLiteral("L’adresse des mises à jour n’est pas sûre."),
                .unreachable =
                    QStringLiteral("Les mises à jour n’ont pas pu être chargées. Réessayez plus tard."),
                .unreadable = QStringLiteral("La liste des mises à jour n’a pas pu être lue.")};
    case AppLanguage::de:
        return {.title = QStringLiteral("Softwareaktualisierung"),
                .checking = QStringLiteral("Nach Updates wird gesucht…"),
                .upToDate = QStringLiteral("Tovi %@ ist die neueste Version."),
                .available = QStringLiteral("Tovi %@ ist verfügbar. Du hast %@."),
                .download = QStringLiteral("Laden…"),
                .close = QStringLiteral("Schließen"),
                .notes = QStringLiteral("Neuerungen"),
                .switchedOff =
                    QStringLiteral("Updates für dieses Tovi kommen von dort, woher es installiert wurde."),
                .noFeed = QStringLiteral("Dieses Tovi weiß nicht, wo es nach Updates suchen soll."),
                .insecure = QStringLiteral("Die Adresse der Updates ist nicht sicher."),
                .unreachable =
                    QStringLiteral("Die Updates konnten nicht geladen werden. Versuche es später erneut."),
                .unreadable = QStringLiteral("Die Liste der Updates konnte nicht gelesen werden.")};
    case AppLanguage::es:
        return {.title = QStringLiteral("Actualización de software"),
                .checking = QStringLiteral("Buscando actualizaciones…"),
                .upToDate = QStringLiteral("Tovi %@ es la versión más reciente."),
                .available = QStringLiteral("Tovi %@ está disponible. Tienes %@."),
                .download = QStringLiteral("Descargar…"),
                .close = QStringLiteral("Cerrar"),
                .notes = QStringLiteral("Novedades"),
                .switchedOff =
                    QStringLiteral("Las actualizaciones de esta copia de Tovi vienen de donde se instaló."),
                .noFeed = QStringLiteral("Esta copia de Tovi no sabe dónde buscar actualizaciones."),
                .insecure = QStringLiteral("La dirección de las actualizaciones no es segura."),
                .unreachable =
                    QStringLiteral("No se pudieron cargar las actualizaciones. Inténtalo más tarde."),
                .unreadable = QStringLiteral("No se pudo leer la lista de actualizaciones.")};
    case AppLanguage::ru:
        return {.title = QStringLiteral("Обновление программы"),
                .checking = QStringLiteral("Поиск обновлений…"),
                .upToDate = QStringLiteral("Tovi %@ — самая новая версия."),
                .available = QStringLiteral("Доступна версия Tovi %@. У вас %@."),
                .download = QStringLiteral("Загрузить…"),
                .close = QStringLiteral("Закрыть"),
                .notes = QStringLiteral("Что нового"),
                .switchedOff =
                    QStringLiteral("Обновления этой копии Tovi поступают оттуда, откуда она установлена."),
                .noFeed = QStringLiteral("Этой копии Tovi неизвестно, где искать обновления."),
                .insecure = QStringLiteral("Адрес обновлений небезопасен."),
                .unreachable = QStringLiteral("Не удалось загрузить обновления. Попробуйте позже."),
                .unreadable = QStringLiteral("Не удалось прочитать список обновлений.")};
    case AppLanguage::system:
    case AppLanguage::en:
        return {.title = QStringLiteral("Software Update"),
                .checking = QStringLiteral("Looking for updates…"),
                .upToDate = QStringLiteral("Tovi %@ is the newest version."),
                .available = QStringLiteral("Tovi %@ is available. You have %@."),
                .download = QStringLiteral("Download…"),
                .close = QStringLiteral("Close"),
                .notes = QStringLiteral("What is new"),
                .switchedOff =
                    QStringLiteral("Updates of this copy of Tovi come from where it was installed from."),
                .noFeed = QStringLiteral("This copy of Tovi does not know where to look for updates."),
                .insecure = QStringLiteral("The address of the updates is not secure."),
                .unreachable = QStringLiteral("The updates could not be loaded. Try again later."),
                .unreadable = QStringLiteral("The list of updates could not be read.")};
    }
    return {};
}

} // namespace tovi
