#include "app/language_dialog.h"

#include "text/string_table.h"
#include "widgets/centring.h"
#include "widgets/form_texts.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <algorithm>

static constexpr ControlText kLanguageTexts[] = {
    {"fraLanguage", IDS_FRMLANG_FRA_LANGUAGE, false},   {"optLanguage(0)", IDS_FRMLANG_OPT_JAPAN, false},
    {"optLanguage(1)", IDS_FRMLANG_OPT_ENGLISH, false}, {"cmdOK", IDS_FRMLANG_CMD_OK, false},
    {"cmdCancel", IDS_FRMLANG_CMD_CANCEL, false},
};

frmLanguage::frmLanguage() {
    setObjectName(QStringLiteral("frmLanguage"));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);

    auto* fraLanguage = addControl<QGroupBox>(*this, QStringLiteral("fraLanguage"));
    auto* options = new QVBoxLayout(fraLanguage);
    for (std::size_t i = 0; i < optLanguage.size(); ++i) {
        optLanguage[i] = addControl<QRadioButton>(*fraLanguage, QStringLiteral("optLanguage(%1)").arg(i));
        options->addWidget(optLanguage[i]);
    }

    auto* cmdOK = addControl<QPushButton>(*this, QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    auto* cmdCancel = addControl<QPushButton>(*this, QStringLiteral("cmdCancel"));
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);

    auto* content = new QVBoxLayout(this);
    content->addWidget(fraLanguage);
    content->addLayout(buttons);
    content->setSizeConstraint(QLayout::SetFixedSize);
    fraLanguage->setMinimumWidth(240);

    connect(cmdOK, &QPushButton::clicked, this, [this] { cmdOK_Click(); });
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);

    subApplyLanguage([this] {
        setWindowTitle(text(IDS_FRMLANG_CAPTION));
        applyControlTexts(*this, kLanguageTexts);
    });
    QRadioButton* chosen = optLanguage[gLanguage == 0 ? 0 : 1];
    chosen->setChecked(true);
    chosen->setFocus();
    centreOnScreen(*this);
}

void frmLanguage::cmdOK_Click() {
    const auto selected =
        std::find_if(optLanguage.begin(), optLanguage.end(), [](const QRadioButton* o) { return o->isChecked(); });
    if (selected != optLanguage.end())
        gLanguage = static_cast<int>(selected - optLanguage.begin());
    accept();
}
