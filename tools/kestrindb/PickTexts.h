// What the key picker says beside the library's own texts, in the languages of these.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "lKestrinDb.h"

namespace kestrindb {

struct PickTexts {
  std::string_view language;
  const wchar_t* dialog;  // the keys
  const wchar_t* list;    // those in an open drop-down
  const wchar_t* of;      // as in "3 of 14"
  const wchar_t* none;    // no entry fits a search
};

// In the user's language, or in English, which is the first.
inline const PickTexts& TextsOfPicker() {
  static constexpr std::array<PickTexts, 10> texts{{
      {"en", L"Arrows move, Enter or Space works, typing searches, Del clears, Esc leaves.",
       L"Typing searches, Enter takes, Del clears, Esc goes back.", L"of", L"no match"},
      {"pt", L"Setas movem, Enter ou Espaço aciona, digitar procura, Del limpa, Esc sai.",
       L"Digitar procura, Enter aceita, Del limpa, Esc volta.", L"de", L"nada encontrado"},
      {"cs", L"Šipky: pohyb, Enter/mezerník: provést, psaní: hledat, Del: smazat, Esc: konec.",
       L"Psaní: hledat, Enter: vybrat, Del: smazat, Esc: zpět.", L"z", L"nic nenalezeno"},
      {"de", L"Pfeile bewegen, Enter/Leertaste wirkt, Tippen sucht, Entf leert, Esc endet.",
       L"Tippen sucht, Enter übernimmt, Entf leert, Esc geht zurück.", L"von", L"kein Treffer"},
      {"fr", L"Flèches : bouger, Entrée/Espace : agir, taper : chercher, Suppr, Échap : sortir",
       L"Taper : chercher, Entrée : choisir, Suppr : vider, Échap : retour", L"sur",
       L"aucun résultat"},
      {"hu", L"Nyilak: mozgás, Enter/szóköz: művelet, gépelés: keresés, Del: törlés, Esc: ki",
       L"Gépelés: keresés, Enter: választás, Del: törlés, Esc: vissza", L"/", L"nincs találat"},
      {"it", L"Frecce: muovere, Invio/Spazio: agire, digitare: cercare, Canc, Esc: uscire",
       L"Digitare: cercare, Invio: scegliere, Canc: svuotare, Esc: indietro", L"di",
       L"nessun risultato"},
      {"ro", L"Săgeți: mișcare, Enter/Spațiu: acțiune, tastare: căutare, Del, Esc: ieșire",
       L"Tastare: căutare, Enter: alegere, Del: golire, Esc: înapoi", L"din", L"niciun rezultat"},
      {"zh-CN", L"方向键移动，回车或空格执行，键入搜索，Del 清除，Esc 退出。",
       L"键入搜索，回车选定，Del 清除，Esc 返回。", L"/", L"无匹配项"},
      {"es", L"Flechas: mover, Intro/Espacio: actuar, escribir: buscar, Supr, Esc: salir",
       L"Escribir: buscar, Intro: elegir, Supr: vaciar, Esc: volver", L"de", L"sin resultados"},
  }};
  const auto* const found = std::find_if(texts.begin(), texts.end(), [](const PickTexts& each) {
    return each.language == kestrin::UserLanguage().tag;
  });
  return found == texts.end() ? texts.front() : *found;
}

}  // namespace kestrindb
