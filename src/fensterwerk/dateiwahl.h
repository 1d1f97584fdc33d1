// The one funnel of every choice of a folder or file: dialogs ask here, tests answer beforehand.
#pragma once

#include <QString>
#include <optional>
#include <string>

class QWidget;

namespace zek {

class Dateiwahl {
public:
    virtual ~Dateiwahl() = default;
    // A folder that a person has chosen, without a separator at its end. Begins at `start` where there is such a
    // folder. Empty when cancelled.
    virtual std::optional<std::string> Ordner(QWidget* eltern, const QString& titel, const std::string& start) = 0;
};

// By a dialog of our own, which is German whatever the desktop speaks.
class Dateiwahldialog final : public Dateiwahl {
public:
    std::optional<std::string> Ordner(QWidget* eltern, const QString& titel, const std::string& start) override;
};

}  // namespace zek
