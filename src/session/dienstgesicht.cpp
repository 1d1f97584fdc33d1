#include "session/dienstgesicht.h"

#include "platform/datum.h"

#include <algorithm>

namespace zek {

namespace {

// The log holds one entry per line.
std::string Einzeilig(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

}  // namespace

Dienstgesicht::Dienstgesicht(std::function<void(const std::string&)> ausgabe) : ausgabe_(std::move(ausgabe)) {}

void Dienstgesicht::Melde(const std::string& text) {
    if (protokoll_ != nullptr) protokoll_->Statusmeldung(text);
}

int Dienstgesicht::ZeigeMeldung(const std::string& text, int flags, int) {
    letzteMeldung_ = text;
    const bool frage = (flags & meldung::Knopfsatzmaske) != meldung::Ok;
    Melde((frage ? "Frage (ohne Bildschirm mit 0 beantwortet): " : "Hinweis: ") + Einzeilig(text));
    return meldung::Zeitablauf;
}

void Dienstgesicht::VerzoegerungBeginnt(const std::string& text, int) {
    Melde(text);
}

bool Dienstgesicht::Verbindungseinstellungen(Verbindungsangaben&) {
    Melde("Es ist kein Port eingestellt: Tragen Sie in den Einstellungen, Abschnitt 'IBConnect', 'IBPort' ein.");
    return false;
}

void Dienstgesicht::StatuslisteEintrag(Zeitpunkt zeit, const std::string& text, bool) {
    ausgabe_(Datumtext(zeit) + ": " + text);
}

Datenpflegeanzeige& Dienstgesicht::DatenpflegeFensterErzeugen() {
    datenpflege_.NeuerLauf();
    return datenpflege_;
}

void Dienstgesicht::DatenpflegeFensterFreigeben() {
    datenpflege_.NeuerLauf();
}

void Dienstgesicht::Datenpflegemelder::Titellabel(const std::string& text) {
    if (text == titel_) return;
    titel_ = text;
    if (!text.empty()) gesicht_.Melde("Datenpflege - " + text);
}

}  // namespace zek
