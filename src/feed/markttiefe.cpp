#include "feed/markttiefe.h"

#include "datafiles/kursart.h"
#include "feed/einfach.h"

namespace zek {

namespace {
constexpr int Geloescht = 2;
constexpr int Briefseite = 0;
}  // namespace

Markttiefe::Markttiefe(const Titelbestand& bestand, const Uhr& uhr, Aufzeichnung& aufzeichnung)
    : bestand_(bestand), uhr_(uhr), aufzeichnung_(aufzeichnung) {}

void Markttiefe::updateMktDepth(int id, int position, int operation, int side, double price, double size) {
    if (price == 0 || operation == Geloescht) return;
    clTitelobjekt* const titel = bestand_.Titelliste.Finde(id);
    if (!titel || !titel->UseMarkttiefe) return;
    if (position < 0 || position >= kursart::TiefsteStufe) return;
    const auto kurs = AlsEinfach(price);
    const auto volume = AlsEinfach(size);
    if (!kurs || !volume) return;
    const int stufe = position + 1;
    const auto art = side == Briefseite ? kursart::BriefTiefe(stufe) : kursart::GeldTiefe(stufe);
    aufzeichnung_.TiefeSchreiben(*titel, art, *kurs, *volume, uhr_.Jetzt());
}

}  // namespace zek
