#include "fensterwerk/dateiwahl.h"

#include "fensterwerk/text.h"

#include <QDir>
#include <QFileDialog>
#include <QHeaderView>
#include <QTreeView>

namespace zek {

std::optional<std::string> Dateiwahldialog::Ordner(QWidget* eltern, const QString& titel, const std::string& start) {
    QFileDialog dialog(eltern, titel);
    dialog.setObjectName("Ordnerwahl");
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setWindowModality(Qt::WindowModal);
    // Of a folder only its name tells something; the rest would come in the machine's language.
    if (auto* liste = dialog.findChild<QTreeView*>("treeView")) {
        for (int spalte = 1; spalte < liste->model()->columnCount(); ++spalte) liste->hideColumn(spalte);
        liste->header()->setStretchLastSection(true);
    }
    const QString anfang = Q(start);
    dialog.setDirectory(!anfang.isEmpty() && QDir(anfang).exists() ? anfang : QDir::homePath());
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
    return QDir::cleanPath(dialog.selectedFiles().first()).toStdString();
}

}  // namespace zek
