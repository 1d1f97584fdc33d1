#include "fensterwerk/dateiwahl.h"

#include "fensterwerk/text.h"

#include <QDir>
#include <QFileDialog>

namespace zek {

std::optional<std::string> Dateiwahldialog::Ordner(QWidget* eltern, const QString& titel, const std::string& start) {
    QFileDialog dialog(eltern, titel);
    dialog.setObjectName("Ordnerwahl");
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setWindowModality(Qt::WindowModal);
    const QString anfang = Q(start);
    dialog.setDirectory(!anfang.isEmpty() && QDir(anfang).exists() ? anfang : QDir::homePath());
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
    return QDir::cleanPath(dialog.selectedFiles().first()).toStdString();
}

}  // namespace zek
