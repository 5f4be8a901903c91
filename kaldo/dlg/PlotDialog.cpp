#include "kaldo/dlg/PlotDialog.h"

#include "kaldo/dlg/ModalLoop.h"
#include "kaldo/dlg/SheetPreview.h"
#include "kaldo/util/GuiThread.h"
#include "kxed.h"
#include "kxstring.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <cmath>
#include <memory>
#include <optional>

namespace kaldo::dlg {

namespace {

const QString kCustomPaper = QStringLiteral("Custom");
const QStringList kAreas = {QStringLiteral("Extents"), QStringLiteral("Display"), QStringLiteral("Window")};
const QStringList kScales = {QStringLiteral("Fit"),   QStringLiteral("1:1"),   QStringLiteral("1:2"),
                             QStringLiteral("1:5"),   QStringLiteral("1:10"),  QStringLiteral("1:20"),
                             QStringLiteral("1:25"),  QStringLiteral("1:50"),  QStringLiteral("1:100"),
                             QStringLiteral("1:200"), QStringLiteral("1:250"), QStringLiteral("1:500"),
                             QStringLiteral("1:1000"), QStringLiteral("2:1"),  QStringLiteral("5:1"),
                             QStringLiteral("10:1")};

QString text(const std::wstring& value)
{
    return QString::fromStdWString(value);
}

template <class Widget>
Widget* item(Widget* widget, int id)
{
    widget->setProperty("itemId", id);
    return widget;
}

class PlotDialog : public QDialog {
public:
    PlotDialog(const view::Scene& scene, const view::PlotSource& source, const view::PlotSettings& settings,
               std::filesystem::path file, QWidget* parent)
        : QDialog(parent),
          m_source(source),
          m_settings(settings),
          m_file(std::move(file)),
          m_paper(item(new QComboBox, kPlotPaper)),
          m_paperWidth(item(new QLineEdit, kPlotPaperWidth)),
          m_paperHeight(item(new QLineEdit, kPlotPaperHeight)),
          m_portrait(item(new QRadioButton(tr("&Portrait")), kPlotPortrait)),
          m_landscape(item(new QRadioButton(tr("&Landscape")), kPlotLandscape)),
          m_area(item(new QComboBox, kPlotArea)),
          m_pickWindow(item(new QPushButton(tr("W&indow <")), kPlotPickWindow)),
          m_scale(item(new QComboBox, kPlotScale)),
          m_centre(item(new QCheckBox(tr("&Center the plot")), kPlotCentre)),
          m_offsetX(item(new QLineEdit, kPlotOffsetX)),
          m_offsetY(item(new QLineEdit, kPlotOffsetY)),
          m_monochrome(item(new QCheckBox(tr("&Monochrome")), kPlotMonochrome)),
          m_lineWeights(item(new QCheckBox(tr("Plot line&weights")), kPlotLineWeights)),
          m_defaultLineWeight(item(new QLineEdit, kPlotDefaultLineWeight)),
          m_preview(item(new SheetPreview(scene), kPlotPreview)),
          m_summary(item(new QLabel, kPlotSummary)),
          m_plot(item(new QPushButton(tr("Plot")), 1)),
          m_cancel(item(new QPushButton(tr("Cancel")), 2))
    {
        setWindowTitle(tr("Plot"));
        build();
        fill();
        connectItems();
        refresh();
    }

    const view::PlotSettings& settings() const { return m_settings; }
    const std::filesystem::path& file() const { return m_file; }

private:
    void build()
    {
        auto* paperBox = new QGroupBox(tr("Paper"));
        auto* paper = new QGridLayout(paperBox);
        auto* paperLabel = new QLabel(tr("Si&ze:"));
        paperLabel->setBuddy(m_paper);
        paper->addWidget(paperLabel, 0, 0);
        paper->addWidget(m_paper, 0, 1, 1, 3);
        paper->addWidget(new QLabel(tr("Width (mm):")), 1, 0);
        paper->addWidget(m_paperWidth, 1, 1);
        paper->addWidget(new QLabel(tr("Height (mm):")), 1, 2);
        paper->addWidget(m_paperHeight, 1, 3);
        paper->addWidget(m_portrait, 2, 0, 1, 2);
        paper->addWidget(m_landscape, 2, 2, 1, 2);

        auto* areaBox = new QGroupBox(tr("Plot area"));
        auto* area = new QHBoxLayout(areaBox);
        area->addWidget(m_area, 1);
        area->addWidget(m_pickWindow);

        auto* scaleBox = new QGroupBox(tr("Scale and offset"));
        auto* scale = new QGridLayout(scaleBox);
        auto* scaleLabel = new QLabel(tr("&Scale:"));
        scaleLabel->setBuddy(m_scale);
        scale->addWidget(scaleLabel, 0, 0);
        scale->addWidget(m_scale, 0, 1, 1, 3);
        scale->addWidget(m_centre, 1, 0, 1, 4);
        scale->addWidget(new QLabel(tr("X (mm):")), 2, 0);
        scale->addWidget(m_offsetX, 2, 1);
        scale->addWidget(new QLabel(tr("Y (mm):")), 2, 2);
        scale->addWidget(m_offsetY, 2, 3);

        auto* linesBox = new QGroupBox(tr("Lines"));
        auto* lines = new QGridLayout(linesBox);
        lines->addWidget(m_monochrome, 0, 0, 1, 2);
        lines->addWidget(m_lineWeights, 1, 0, 1, 2);
        lines->addWidget(new QLabel(tr("Default lineweight (mm):")), 2, 0);
        lines->addWidget(m_defaultLineWeight, 2, 1);

        auto* choices = new QVBoxLayout;
        for (QGroupBox* box : {paperBox, areaBox, scaleBox, linesBox})
            choices->addWidget(box);
        choices->addStretch(1);

        auto* sheet = new QVBoxLayout;
        sheet->addWidget(m_preview, 1);
        m_summary->setWordWrap(true);
        sheet->addWidget(m_summary);

        auto* buttons = new QHBoxLayout;
        buttons->addStretch(1);
        buttons->addWidget(m_plot);
        buttons->addWidget(m_cancel);
        m_plot->setDefault(true);

        auto* top = new QHBoxLayout;
        top->addLayout(choices);
        top->addLayout(sheet, 1);
        auto* whole = new QVBoxLayout(this);
        whole->addLayout(top, 1);
        whole->addLayout(buttons);
        resize(900, 560);
    }

    void fill()
    {
        for (const view::Paper& named : view::namedPapers())
            m_paper->addItem(text(named.name));
        m_paper->addItem(kCustomPaper);
        m_paper->setCurrentIndex(m_settings.paper.name.empty() ? m_paper->count() - 1
                                                               : m_paper->findText(text(m_settings.paper.name)));
        showPaperSides(m_settings.paper);
        (m_settings.orientation == view::Orientation::Portrait ? m_portrait : m_landscape)->setChecked(true);
        m_area->addItems(kAreas);
        m_area->setCurrentIndex(int(m_settings.area));
        m_scale->setEditable(true);
        m_scale->setInsertPolicy(QComboBox::NoInsert);
        m_scale->addItems(kScales);
        const QString scale = text(view::plotScaleText(m_settings.scale));
        if (const int row = m_scale->findText(scale); row >= 0)
            m_scale->setCurrentIndex(row);
        else
            m_scale->setEditText(scale);
        m_centre->setChecked(m_settings.centred);
        m_offsetX->setText(text(view::numberText(m_settings.offset.x)));
        m_offsetY->setText(text(view::numberText(m_settings.offset.y)));
        m_monochrome->setChecked(m_settings.look.monochrome);
        m_lineWeights->setChecked(m_settings.look.lineWeights);
        m_defaultLineWeight->setText(text(view::numberText(m_settings.look.defaultLineWeight)));
    }

    void connectItems()
    {
        connect(m_paper, &QComboBox::currentIndexChanged, this, [this] {
            if (const auto named = namedPaper())
                showPaperSides(*named);
            refresh();
        });
        for (QLineEdit* edit : {m_paperWidth, m_paperHeight, m_offsetX, m_offsetY, m_defaultLineWeight})
            connect(edit, &QLineEdit::textChanged, this, [this] { refresh(); });
        connect(m_portrait, &QRadioButton::toggled, this, [this] { refresh(); });
        connect(m_area, &QComboBox::currentIndexChanged, this, [this] { refresh(); });
        connect(m_scale, &QComboBox::currentTextChanged, this, [this] { refresh(); });
        for (QCheckBox* box : {m_centre, m_monochrome, m_lineWeights})
            connect(box, &QCheckBox::toggled, this, [this] { refresh(); });
        connect(m_pickWindow, &QPushButton::clicked, this, [this] {
            read();
            done(kPlotPickWindow);
        });
        connect(m_plot, &QPushButton::clicked, this, [this] {
            if (read().isEmpty() && chooseFile())
                accept();
        });
        connect(m_cancel, &QPushButton::clicked, this, &QDialog::reject);
    }

    // The PDF file, chosen in the host's file dialog (a script's next
    // line); false when none was.
    bool chooseFile()
    {
        wchar_t* name = nullptr;
        if (getFileNameByFileDialog(L"Plot to File", m_file.wstring().c_str(), L"pdf", 1, name) != 0 || !name)
            return false;
        const std::unique_ptr<wchar_t, decltype(&kald_free)> owned(name, kald_free);
        m_file = name;
        return true;
    }

    std::optional<view::Paper> namedPaper() const
    {
        const int row = m_paper->currentIndex();
        if (row < 0 || row >= int(view::namedPapers().size()))
            return std::nullopt;
        return view::namedPapers()[std::size_t(row)];
    }

    void showPaperSides(const view::Paper& paper)
    {
        const QSignalBlocker blockWidth(m_paperWidth);
        const QSignalBlocker blockHeight(m_paperHeight);
        m_paperWidth->setText(text(view::numberText(paper.width)));
        m_paperHeight->setText(text(view::numberText(paper.height)));
    }

    // Takes the items' values into the settings; returns what is wrong
    // with them, empty when nothing is.
    QString read()
    {
        const bool custom = !namedPaper();
        m_paperWidth->setEnabled(custom);
        m_paperHeight->setEnabled(custom);
        m_offsetX->setEnabled(!m_centre->isChecked());
        m_offsetY->setEnabled(!m_centre->isChecked());
        QString problem;
        if (const auto named = namedPaper())
            m_settings.paper = *named;
        else if (const auto typed = view::parsePaper((m_paperWidth->text() + 'x' + m_paperHeight->text()).toStdWString()))
            m_settings.paper = *typed;
        else
            problem = tr("The paper's width and height are millimetres from 1 to 10000.");
        m_settings.orientation = m_portrait->isChecked() ? view::Orientation::Portrait : view::Orientation::Landscape;
        m_settings.area = static_cast<view::PlotArea>(std::max(0, m_area->currentIndex()));
        if (m_settings.area == view::PlotArea::Window && m_settings.window.empty && problem.isEmpty())
            problem = tr("Pick the window's corners with Window <.");
        if (const auto scale = view::parsePlotScale(m_scale->currentText().toStdWString()))
            m_settings.scale = *scale;
        else if (problem.isEmpty())
            problem = tr("A scale is written 1:100, 1=50 or Fit.");
        m_settings.centred = m_centre->isChecked();
        if (const auto offset = view::parseOffset((m_offsetX->text() + ',' + m_offsetY->text()).toStdWString()))
            m_settings.offset = *offset;
        else if (!m_settings.centred && problem.isEmpty())
            problem = tr("The offset is two numbers of millimetres.");
        m_settings.look.monochrome = m_monochrome->isChecked();
        m_settings.look.lineWeights = m_lineWeights->isChecked();
        bool ok = false;
        const double weight = m_defaultLineWeight->text().trimmed().toDouble(&ok);
        if (ok && weight >= 0 && weight <= view::kThickestLineWeight)
            m_settings.look.defaultLineWeight = weight;
        else if (problem.isEmpty())
            problem = tr("The default lineweight is from 0 to 2.11 mm.");
        return problem;
    }

    void refresh()
    {
        const QString problem = read();
        const view::SheetPlacement placement = view::placeOnSheet(m_settings, m_source);
        m_preview->showPlot(placement, m_settings.look);
        m_plot->setEnabled(problem.isEmpty());
        if (!problem.isEmpty()) {
            m_summary->setText(problem);
            return;
        }
        const view::Bounds plotted = placement.plotted();
        QString summary = tr("Scale %1, the drawing %2 x %3 mm on the sheet.")
                              .arg(text(view::placedScaleText(placement, m_source.unitMillimetres)))
                              .arg(text(view::numberText(std::round((plotted.maxX - plotted.minX) * 10) / 10)))
                              .arg(text(view::numberText(std::round((plotted.maxY - plotted.minY) * 10) / 10)));
        if (!placement.fits())
            summary += ' ' + tr("Parts lie beyond the printable area and are cut off.");
        m_summary->setText(summary);
    }

    const view::PlotSource& m_source;
    view::PlotSettings m_settings;
    std::filesystem::path m_file;
    QComboBox* m_paper;
    QLineEdit* m_paperWidth;
    QLineEdit* m_paperHeight;
    QRadioButton* m_portrait;
    QRadioButton* m_landscape;
    QComboBox* m_area;
    QPushButton* m_pickWindow;
    QComboBox* m_scale;
    QCheckBox* m_centre;
    QLineEdit* m_offsetX;
    QLineEdit* m_offsetY;
    QCheckBox* m_monochrome;
    QCheckBox* m_lineWeights;
    QLineEdit* m_defaultLineWeight;
    SheetPreview* m_preview;
    QLabel* m_summary;
    QPushButton* m_plot;
    QPushButton* m_cancel;
};

}  // namespace

PlotChoice runPlotDialog(const view::Scene& scene, const view::PlotSource& source, view::PlotSettings& settings,
                         std::filesystem::path& file)
{
    PlotChoice choice = PlotChoice::Cancel;
    runOnGuiThread([&] {
        if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
            return;
        PlotDialog window(scene, source, settings, file, QApplication::activeWindow());
        ModalSubject subject;
        subject.window = &window;
        subject.title = L"Dialog " + std::to_wstring(kPlotDialog) + L": " + window.windowTitle().toStdWString();
        subject.closedPrefix = L"Dialog " + std::to_wstring(kPlotDialog) + L" closed: ";
        subject.escape = [&window] { window.reject(); };
        subject.result = [](int result) { return result == QDialog::Accepted ? 1 : result == QDialog::Rejected ? 2 : result; };
        const int result = runModalLoop(subject);
        if (result == 2)
            return;
        settings = window.settings();
        file = window.file();
        choice = result == kPlotPickWindow ? PlotChoice::PickWindow : PlotChoice::Plot;
    });
    return choice;
}

}  // namespace kaldo::dlg
