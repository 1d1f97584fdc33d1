#include "feed/tws/rahmen.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace zek::tws {

Rahmen::Rahmen(Rahmenpuffer& puffer, intern::Block& block, std::string_view inhalt)
    : puffer_(&puffer), block_(&block), inhalt_(inhalt) {
    ++block_->Gehalten;
}

Rahmen::Rahmen(Rahmen&& anderer) noexcept
    : puffer_(anderer.puffer_), block_(std::exchange(anderer.block_, nullptr)), inhalt_(anderer.inhalt_) {}

Rahmen::~Rahmen() {
    if (block_ && --block_->Gehalten == 0) puffer_->LasseLos(*block_);
}

void Rahmenpuffer::LasseLos(intern::Block& block) {
    if (&block == block_.get()) return;
    std::erase_if(abgelegt_, [&](const auto& abgelegt) { return abgelegt.get() == &block; });
}

// Brings the open bytes to the start of a new block.
void Rahmenpuffer::Umzug(std::size_t groesse) {
    auto neu = std::make_unique<intern::Block>(groesse);
    const std::size_t offen = Offen();
    if (offen > 0) std::memcpy(neu->Bytes.get(), block_->Bytes.get() + anfang_, offen);
    if (block_ && block_->Gehalten > 0) abgelegt_.push_back(std::move(block_));
    block_ = std::move(neu);
    anfang_ = 0;
    ende_ = offen;
}

std::span<char> Rahmenpuffer::Frei() {
    const std::size_t offen = Offen();
    if (!block_ || (offen == 0 && block_->Groesse > Behaltgroesse)) {
        Umzug(Anfangsgroesse);
    } else if (block_->Gehalten == 0 && offen == 0) {
        anfang_ = ende_ = 0;
    } else if (block_->Groesse - ende_ < MinFrei) {
        const bool halbLeer = offen + MinFrei <= block_->Groesse / 2;
        if (halbLeer && block_->Gehalten == 0) {
            std::memmove(block_->Bytes.get(), block_->Bytes.get() + anfang_, offen);
            anfang_ = 0;
            ende_ = offen;
        } else {
            Umzug(std::max(Anfangsgroesse, 2 * (offen + MinFrei)));
        }
    }
    return {block_->Bytes.get() + ende_, block_->Groesse - ende_};
}

std::optional<Rahmen> Rahmenpuffer::Naechster() {
    if (gestoert_ || Offen() < Laengenfeld) return std::nullopt;
    const char* anfang = block_->Bytes.get() + anfang_;
    std::size_t laenge = 0;
    for (std::size_t i = 0; i < Laengenfeld; ++i) laenge = laenge << 8 | static_cast<unsigned char>(anfang[i]);
    if (laenge == 0 || laenge > maxInhalt_) {
        gestoert_ = true;
        return std::nullopt;
    }
    if (Offen() - Laengenfeld < laenge) return std::nullopt;
    anfang_ += Laengenfeld + laenge;
    return Rahmen(*this, *block_, {anfang + Laengenfeld, laenge});
}

std::size_t Rahmenpuffer::Speicher() const {
    std::size_t summe = block_ ? block_->Groesse : 0;
    for (const auto& abgelegt : abgelegt_) summe += abgelegt->Groesse;
    return summe;
}

}  // namespace zek::tws
