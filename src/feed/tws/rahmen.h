// Frames: a length of 4 bytes (unsigned, big-endian), then that many bytes of payload.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace zek::tws {

inline constexpr std::size_t Laengenfeld = 4;
// The longest payload that is accepted, in bytes. A history answer of 2000 bars has about 150 000.
inline constexpr std::size_t MaxInhalt = 0xFFFFFF;

namespace intern {
struct Block {
    explicit Block(std::size_t groesse) : Bytes(std::make_unique_for_overwrite<char[]>(groesse)), Groesse(groesse) {}
    std::unique_ptr<char[]> Bytes;
    std::size_t Groesse;
    int Gehalten = 0;
};
}  // namespace intern

class Rahmenpuffer;

// A frame taken out of the buffer. Its bytes stay where they are as long as this object lives, also while the buffer
// takes in and gives out more. It must not outlive the buffer.
class Rahmen {
public:
    Rahmen(Rahmen&& anderer) noexcept;
    Rahmen(const Rahmen&) = delete;
    Rahmen& operator=(const Rahmen&) = delete;
    Rahmen& operator=(Rahmen&&) = delete;
    ~Rahmen();

    std::string_view Inhalt() const { return inhalt_; }

private:
    friend class Rahmenpuffer;
    Rahmen(Rahmenpuffer& puffer, intern::Block& block, std::string_view inhalt);

    Rahmenpuffer* puffer_;
    intern::Block* block_;
    std::string_view inhalt_;
};

// The receive buffer of one stream. The socket reads straight into Frei(); frames are views into it. It grows with
// the bytes that really came, never with a length that a peer merely claims.
class Rahmenpuffer {
public:
    static constexpr std::size_t Anfangsgroesse = 128 * 1024;
    static constexpr std::size_t MinFrei = 16 * 1024;
    // An empty buffer that has grown beyond this goes back to its first size.
    static constexpr std::size_t Behaltgroesse = 1024 * 1024;

    // `maxInhalt`: longest payload for now, in bytes.
    explicit Rahmenpuffer(std::size_t maxInhalt = MaxInhalt) : maxInhalt_(maxInhalt) {}
    Rahmenpuffer(const Rahmenpuffer&) = delete;
    Rahmenpuffer& operator=(const Rahmenpuffer&) = delete;

    void SetzeMaxInhalt(std::size_t bytes) { maxInhalt_ = bytes; }

    // Where the next bytes belong, at least MinFrei of them. Valid until the next call of Frei.
    std::span<char> Frei();
    // The first `anzahl` bytes of the last Frei() hold data now.
    void Angekommen(std::size_t anzahl) { ende_ += anzahl; }

    // The next whole frame, or nothing. A length of 0 or above the limit ends the stream: from then on there is
    // nothing more, and Gestoert() is true.
    std::optional<Rahmen> Naechster();
    bool Gestoert() const { return gestoert_; }

    // Bytes that no frame has been made of yet.
    std::size_t Offen() const { return ende_ - anfang_; }
    std::size_t Speicher() const;

private:
    friend class Rahmen;
    void Umzug(std::size_t groesse);
    void LasseLos(intern::Block& block);

    std::unique_ptr<intern::Block> block_;
    std::vector<std::unique_ptr<intern::Block>> abgelegt_;  // left behind, but a frame still stands in each
    std::size_t anfang_ = 0;
    std::size_t ende_ = 0;
    std::size_t maxInhalt_;
    bool gestoert_ = false;
};

}  // namespace zek::tws
