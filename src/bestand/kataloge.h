// Catalogs of the manager: which there are, titles moved from one to another with their files, titles deleted.
#pragma once

#include "bestand/bestandsumgebung.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zek {

inline constexpr std::string_view KatalogAlleTitel = "Alle Titel";
// The pseudo catalog of account data.
inline constexpr std::string_view KatalogKontodaten = "#Kontodaten#";

class Kataloge {
public:
    explicit Kataloge(Bestandsumgebung um) : um_(std::move(um)) {}

    // The entries of the manager's list: all titles, the catalogs in their order, account data when there are any.
    std::vector<std::string> Eintraege() const;
    // The entry that equals `gemerkt`, letter case aside, from the first catalog on; else 0.
    static std::size_t Gewaehlter(const std::vector<std::string>& eintraege, std::string_view gemerkt);
    // The catalogs that titles of the present entry can be moved to.
    static std::vector<std::string> Ziele(const std::vector<std::string>& eintraege, std::string_view jetziger);

    // Moves titles and their files. What is given up in the middle stays as it is by then: a file of the kinds 1 to 6
    // ends all, and its title keeps its catalog; one of market depth ends that title's files only. False when all was
    // ended. Saves nothing.
    bool Verschiebe(const std::vector<std::int32_t>& titelnummern, const std::string& ziel,
                    const Fortschritt& fortschritt = {});

    // Cancels titles and takes them off the list, the last one first; with their files when wanted. How many files
    // couldn't be deleted. `beiTitel`: a title is gone. Saves nothing.
    std::size_t Loesche(const std::vector<std::int32_t>& titelnummern, bool mitDateien,
                        const std::function<void(std::int32_t)>& beiTitel = {}, const Fortschritt& fortschritt = {});

private:
    bool GibtKontodaten() const;
    bool VerschiebeDateien(clTitelobjekt& titel, const std::string& ziel, std::vector<std::int32_t>& umgezogen);
    void NimmNachzueglerMit(clTitelobjekt& titel, const std::string& alterKatalog,
                            const std::vector<std::int32_t>& umgezogen);
    std::size_t LoescheDateien(clTitelobjekt& titel);

    Bestandsumgebung um_;
};

}  // namespace zek
