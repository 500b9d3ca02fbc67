// SPDX-License-Identifier: GPL-3.0-or-later
// The preview pane in the column browser, driven as a user drives it: a click on a
// font's row, typing in the text field, keys on the sliders, clicks on buttons and
// check boxes. The sample's pixels are checked by their properties: where the ink is
// and how much of it there is.
#include "InkMeasure.h"
#include "TestSupport.h"
#include "ViewTestSupport.h"

#include "services/FontActivating.h"
#include "services/PersistenceService.h"
#include "state/AppState.h"
#include "ui/browser/ColumnBrowserView.h"
#include "ui/browser/FontNodeListModel.h"
#include "ui/preview/FontPreviewView.h"
#include "ui/preview/SampleView.h"
#include "ui/common/WheelGuard.h"
#include "ui/browser/SingleColumnView.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QClipboard>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QScrollBar>
#include <QSemaphore>
#include <QSignalSpy>
#include <QWheelEvent>
#include <QAccessible>
#include <QAccessibleValueInterface>
#include <QSlider>
#include <QStyleOptionButton>
#include <QTest>

#include <atomic>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

QString testFont(const QString &name) { return QStringLiteral(MORVANE_TEST_FONTS) + u'/' + name; }

// Rows of the image with ink, as runs: [first row, row after the last).
QList<std::pair<int, int>> inkRuns(const QImage &image)
{
    QList<std::pair<int, int>> runs;
    for (int y = 0; y < image.height(); ++y) {
        bool ink = false;
        for (int x = 0; x < image.width() && !ink; ++x)
            ink = InkMeasure::isDark(image.pixel(x, y));
        if (ink && (runs.isEmpty() || runs.constLast().second != y))
            runs.append({y, y + 1});
        else if (ink)
            runs.last().second = y + 1;
    }
    return runs;
}

class Preview : public testing::Test
{
protected:
    Preview()
    {
        for (const auto &[from, name] : std::initializer_list<std::pair<QString, QString>>{
                 {testFont(u"Impostor.ttf"_s), u"Impostor.ttf"_s},
                 {u"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"_s, u"DejaVuSans.ttf"_s},
                 {u"/usr/share/fonts/truetype/inter-vf/Inter-roman.var.ttf"_s, u"Inter.ttf"_s},
                 {testFont(u"Axes.ttf"_s), u"Axes.ttf"_s},
                 {testFont(u"Plain.ttf"_s), u"Plain.ttf"_s},
                 {testFont(u"Ligature.ttf"_s), u"Ligature.ttf"_s},
                 {testFont(u"Garbage.otf"_s), u"Broken.ttf"_s}})
            EXPECT_TRUE(QFile::copy(from, library + u'/' + name)) << name.toStdString();
        showFolderAsSource(store, library);
        view.resize(1400, 1000);
        view.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&view));
    }

    SingleColumnView *column() const { return view.columns().value(0); }
    void click(const QString &name)
    {
        SingleColumnView *list = column();
        const QList<FontNode> &nodes = list->nodeModel()->nodes();
        for (qsizetype row = 0; row < nodes.size(); ++row) {
            if (nodes.at(row).name() == name) {
                const QRect rect = list->visualRect(list->nodeModel()->index(static_cast<int>(row)));
                QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, rect.center());
                return;
            }
        }
        ADD_FAILURE() << "no row " << name.toStdString();
    }
    // Clicks the font's row and waits until its pane shows what it loaded.
    FontPreviewView *open(const QString &name)
    {
        click(name);
        const bool shown = QTest::qWaitFor([&] {
            const FontPreviewView *pane = view.previewPane();
            return pane && pane->fontNode().name() == name && !pane->isLoading();
        });
        EXPECT_TRUE(shown) << name.toStdString();
        return shown ? view.previewPane() : nullptr;
    }
    template <typename Widget>
    Widget *named(const QString &name, bool visibleOnly = true) const
    {
        for (Widget *widget : view.previewPane()->findChildren<Widget *>()) {
            // Labels are named by their text; the tests find them by what they show.
            const bool matches = widget->accessibleName() == name || (widget->accessibleName().isEmpty() && widget->objectName() == name);
            if (matches && (!visibleOnly || widget->isVisible()))
                return widget;
        }
        ADD_FAILURE() << "no control named " << name.toStdString();
        return nullptr;
    }
    QString value(const QString &row) const { return named<QLabel>(row)->text(); }
    // The sample as it shows once the pane's layout has given it the height it asks for.
    QImage sample() const
    {
        SampleView *sample = view.previewPane()->sample();
        EXPECT_TRUE(QTest::qWaitFor([&] { return sample->height() == sample->heightForWidth(sample->width()); }));
        return sample->grab().toImage();
    }
    void typeText(const QString &text)
    {
        QLineEdit *field = named<QLineEdit>(u"Preview text"_s);
        QTest::mouseClick(field, Qt::LeftButton);
        QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
        if (text.isEmpty())
            QTest::keyClick(field, Qt::Key_Backspace);
        else
            QTest::keyClicks(field, text);
    }
    // A click on the box itself, as a wide check box's middle may lie past its text.
    static void toggle(QCheckBox *box)
    {
        QStyleOptionButton option;
        option.initFrom(box);
        QTest::mouseClick(box, Qt::LeftButton, {},
                          box->style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, box).center());
    }
    void key(QWidget *target, Qt::Key key)
    {
        target->setFocus();
        QTest::keyClick(target, key);
    }

    QString library = makeDir(testRoot() + u"/Library"_s);
    InstantActivation activation;
    PersistenceService persistence;
    AppState store{activation, persistence};
    ColumnBrowserView view{store};
};

} // namespace

TEST_F(Preview, DrawsTheSelectedFileNotAnInstalledFontOfTheSameName)
{
    ASSERT_TRUE(open(u"Impostor.ttf"_s));
    EXPECT_EQ(named<QLabel>(u"Font family"_s)->text(), u"DejaVu Sans"_s);
    EXPECT_EQ(value(u"Family"_s), u"DejaVu Sans"_s);
    EXPECT_EQ(value(u"Style"_s), u"Book"_s);
    EXPECT_EQ(value(u"PostScript"_s), u"DejaVuSans"_s);
    EXPECT_EQ(value(u"Format"_s), u"TrueType Font"_s);
    EXPECT_EQ(value(u"Glyphs"_s), u"3"_s);
    EXPECT_EQ(value(u"Type"_s), u"Static Font"_s);
    EXPECT_TRUE(value(u"Size"_s).endsWith(u"bytes"_s) || value(u"Size"_s).endsWith(u"kB"_s)) << value(u"Size"_s).toStdString();
    EXPECT_TRUE(named<QLabel>(u"Family"_s)->textInteractionFlags() & Qt::TextSelectableByMouse);

    typeText(u"o"_s);
    EXPECT_EQ(store.previewText(), u"o"_s);
    const QImage square = sample();
    const QRect squareBox = InkMeasure::box(square);
    ASSERT_FALSE(squareBox.isEmpty());
    EXPECT_GT(InkMeasure::share(square, squareBox), 0.9) << "the impostor's o is a filled square";

    // The real DejaVu Sans beside it draws a hollow o.
    ASSERT_TRUE(open(u"DejaVuSans.ttf"_s));
    const QImage letter = sample();
    const QRect letterBox = InkMeasure::box(letter);
    ASSERT_FALSE(letterBox.isEmpty());
    EXPECT_LT(InkMeasure::share(letter, letterBox), 0.6);
    EXPECT_FALSE(InkMeasure::isDark(letter.pixel(letterBox.center())));

    // The activation button toggles this font.
    QPushButton *button = named<QPushButton>(u"Activate"_s);
    ASSERT_TRUE(button);
    QTest::mouseClick(button, Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return store.activatedFonts().contains(library + u"/DejaVuSans.ttf"_s); }));
    EXPECT_EQ(button->text(), u"Deactivate"_s);
}

TEST_F(Preview, AxisSlidersRedrawAtOnceAndResetReturnsTheDefaults)
{
    ASSERT_TRUE(open(u"Inter.ttf"_s));
    EXPECT_EQ(value(u"Type"_s), u"Variable Font (1 axis)"_s);
    QSlider *weight = named<QSlider>(u"Weight"_s);
    ASSERT_TRUE(weight);
    EXPECT_EQ(named<QLabel>(u"Weight value"_s)->text(), u"400.0"_s);
    const QImage regular = sample();
    const qint64 regularInk = InkMeasure::mass(regular);

    key(weight, Qt::Key_End);
    EXPECT_EQ(named<QLabel>(u"Weight value"_s)->text(), u"900.0"_s);
    EXPECT_EQ(view.previewPane()->axisValues().value(0x77676874), 900.0); // 'wght'
    EXPECT_GT(InkMeasure::mass(sample()), regularInk * 13 / 10);
    key(weight, Qt::Key_Home);
    EXPECT_EQ(named<QLabel>(u"Weight value"_s)->text(), u"100.0"_s);
    EXPECT_LT(InkMeasure::mass(sample()), regularInk * 8 / 10);

    QTest::mouseClick(named<QPushButton>(u"Reset to Defaults"_s), Qt::LeftButton);
    EXPECT_EQ(named<QLabel>(u"Weight value"_s)->text(), u"400.0"_s);
    EXPECT_EQ(weight->value(), 40000);
    // A screen reader hears the axis's own value and range, and can set it.
    QAccessibleInterface *reader = QAccessible::queryAccessibleInterface(weight);
    ASSERT_TRUE(reader && reader->valueInterface());
    EXPECT_EQ(reader->text(QAccessible::Value), u"400.0"_s);
    EXPECT_EQ(reader->valueInterface()->minimumValue().toDouble(), 100.0);
    EXPECT_EQ(reader->valueInterface()->maximumValue().toDouble(), 900.0);
    reader->valueInterface()->setCurrentValue(650.0);
    EXPECT_EQ(named<QLabel>(u"Weight value"_s)->text(), u"650.0"_s);
    QTest::mouseClick(named<QPushButton>(u"Reset to Defaults"_s), Qt::LeftButton);
    EXPECT_EQ(sample(), regular);

    // A named instance sets the slider; moving the slider leaves the instance.
    QComboBox *instances = named<QComboBox>(u"Named instance"_s);
    ASSERT_TRUE(instances);
    EXPECT_EQ(instances->currentText(), u"Regular"_s);
    instances->setFocus();
    QTest::keyClicks(instances, u"Bold"_s);
    EXPECT_EQ(instances->currentText(), u"Bold"_s);
    EXPECT_EQ(named<QLabel>(u"Weight value"_s)->text(), u"700.0"_s);
    EXPECT_EQ(weight->value(), 70000);
    key(weight, Qt::Key_Right);
    EXPECT_EQ(named<QLabel>(u"Weight value"_s)->text(), u"701.0"_s);
    EXPECT_EQ(instances->currentIndex(), -1);
    EXPECT_EQ(instances->placeholderText(), u"Custom"_s);

    // Three axes: two moved, both back with one press.
    ASSERT_TRUE(open(u"Axes.ttf"_s));
    EXPECT_EQ(value(u"Type"_s), u"Variable Font (3 axes)"_s);
    key(named<QSlider>(u"Weight"_s), Qt::Key_End);
    key(named<QSlider>(u"Optical Size"_s), Qt::Key_Home);
    EXPECT_EQ(named<QLabel>(u"Weight value"_s)->text(), u"900.0"_s);
    EXPECT_EQ(named<QLabel>(u"Optical Size value"_s)->text(), u"8.0"_s);
    QTest::mouseClick(named<QPushButton>(u"Reset to Defaults"_s), Qt::LeftButton);
    EXPECT_EQ(named<QLabel>(u"Weight value"_s)->text(), u"400.0"_s);
    EXPECT_EQ(named<QLabel>(u"Optical Size value"_s)->text(), u"12.0"_s);
    EXPECT_EQ(view.previewPane()->axisValues().value(0x6F70737A), 12.0); // 'opsz'
}

TEST_F(Preview, FeatureTogglesChangeTheSample)
{
    ASSERT_TRUE(open(u"Ligature.ttf"_s));
    typeText(u"fi"_s);
    // Named by what they do; a stylistic set by the font's own name when it gives one.
    QCheckBox *liga = named<QCheckBox>(u"Standard Ligatures (liga)"_s);
    QCheckBox *smcp = named<QCheckBox>(u"Small Capitals (smcp)"_s);
    ASSERT_TRUE(liga && smcp);
    EXPECT_TRUE(named<QCheckBox>(u"Single-storey a (ss01)"_s));
    EXPECT_TRUE(named<QCheckBox>(u"Stylistic Set 2 (ss02)"_s));
    EXPECT_TRUE(liga->isChecked());
    EXPECT_FALSE(smcp->isChecked());
    const QImage joined = sample();
    EXPECT_GT(InkMeasure::share(joined, InkMeasure::box(joined)), 0.9) << "one wide bar";

    toggle(liga);
    EXPECT_FALSE(liga->isChecked());
    const QImage apart = sample();
    EXPECT_GT(InkMeasure::box(apart).width(), InkMeasure::box(joined).width());
    EXPECT_LT(InkMeasure::share(apart, InkMeasure::box(apart)), 0.5) << "two thin bars with a gap";
    toggle(liga);
    EXPECT_EQ(sample(), joined);
}

TEST_F(Preview, AFileThatIsNotAFontSaysSoTwice)
{
    ASSERT_TRUE(open(u"Broken.ttf"_s));
    EXPECT_EQ(named<QLabel>(u"Font status"_s)->text(), u"Unable to read font metadata"_s);
    EXPECT_EQ(named<QLabel>(u"Sample"_s)->text(), u"Unable to preview this font"_s);
    EXPECT_FALSE(view.previewPane()->sample()->isVisible());
    EXPECT_FALSE(named<QLabel>(u"Family"_s, false)->isVisible());
    EXPECT_TRUE(named<QPushButton>(u"Activate"_s));
}

TEST_F(Preview, OfTwoQuickSelectionsOnlyTheSecondIsShown)
{
    QSemaphore gate;
    std::atomic_bool firstEntered = false;
    std::atomic_bool firstReturned = false;
    store.setPreviewServiceForTesting(std::make_unique<FontPreviewService>(
        FontPreviewService::kEvictionBound, [&](const QString &path) {
            if (!path.endsWith(u"Axes.ttf"_s))
                return FontMetadata::load(path);
            firstEntered = true;
            gate.tryAcquire(1, 20'000);
            std::optional<FontMetadata> metadata = FontMetadata::load(path);
            firstReturned = true;
            return metadata;
        }));
    click(u"Axes.ttf"_s);
    ASSERT_TRUE(view.previewPane());
    EXPECT_TRUE(view.previewPane()->isLoading());
    ASSERT_TRUE(QTest::qWaitFor([&] { return firstEntered.load(); })); // the first file is being read
    click(u"Plain.ttf"_s);
    FontPreviewView *second = view.previewPane();
    ASSERT_EQ(second->fontNode().name(), u"Plain.ttf"_s);
    QSignalSpy loaded(second, &FontPreviewView::loaded);
    EXPECT_EQ(named<QLabel>(u"Font status"_s)->text(), u"Loading font…"_s);
    gate.release();
    ASSERT_TRUE(loaded.wait(20'000));
    EXPECT_TRUE(firstReturned);
    EXPECT_EQ(view.previewPane(), second);
    EXPECT_EQ(second->metadata()->familyName, u"Morvane Test"_s);
    EXPECT_EQ(value(u"Family"_s), u"Morvane Test"_s);
    EXPECT_EQ(value(u"Type"_s), u"Static Font"_s);
    EXPECT_EQ(loaded.size(), 1);
    EXPECT_TRUE(second->findChildren<QSlider *>(u"Weight"_s).isEmpty());
}

TEST_F(Preview, SizeStaysBetween12And96AndTextAndSizeAreSaved)
{
    ASSERT_TRUE(open(u"Plain.ttf"_s));
    QSlider *size = named<QSlider>(u"Preview size"_s);
    QLabel *shown = named<QLabel>(u"Preview size value"_s);
    EXPECT_EQ(shown->text(), u"36 pt"_s);
    for (const auto &[pressed, expected] : std::initializer_list<std::pair<Qt::Key, double>>{
             {Qt::Key_End, 96}, {Qt::Key_PageUp, 96}, {Qt::Key_Right, 96}, {Qt::Key_Home, 12},
             {Qt::Key_PageDown, 12}, {Qt::Key_Left, 12}, {Qt::Key_PageUp, 24}}) {
        key(size, pressed);
        EXPECT_EQ(store.previewSize(), expected) << int(pressed);
        EXPECT_EQ(shown->text(), u"%1 pt"_s.arg(expected));
    }
    // A size from a hand-edited settings file is shown held inside the range.
    store.setPreviewSize(500);
    EXPECT_EQ(shown->text(), u"96 pt"_s);
    EXPECT_EQ(size->value(), 96);

    // Ctrl+Plus and Ctrl+Minus step through the usual sizes, wherever the focus is.
    view.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
    store.setPreviewSize(36);
    column()->setFocus();
    for (const auto &[keys, expected] : std::initializer_list<std::pair<QKeySequence, double>>{
             {QKeySequence(Qt::CTRL | Qt::Key_Plus), 48}, {QKeySequence(Qt::CTRL | Qt::Key_Equal), 72},
             {QKeySequence(Qt::CTRL | Qt::Key_Minus), 48}, {QKeySequence(Qt::CTRL | Qt::Key_Minus), 36}}) {
        QTest::keySequence(column(), keys);
        EXPECT_EQ(store.previewSize(), expected) << keys.toString().toStdString();
    }
    store.setPreviewSize(14);
    QTest::keySequence(column(), QKeySequence(Qt::CTRL | Qt::Key_Minus));
    EXPECT_EQ(store.previewSize(), 12);
    QTest::keySequence(column(), QKeySequence(Qt::CTRL | Qt::Key_Minus));
    EXPECT_EQ(store.previewSize(), 12);

    QPushButton *clear = named<QPushButton>(u"Clear"_s);
    typeText(u"Hello"_s);
    EXPECT_EQ(store.previewText(), u"Hello"_s);
    EXPECT_EQ(view.previewPane()->sample()->text(), u"Hello"_s);
    EXPECT_TRUE(clear->isEnabled());
    QTest::mouseClick(clear, Qt::LeftButton);
    EXPECT_EQ(store.previewText(), QString());
    EXPECT_EQ(named<QLineEdit>(u"Preview text"_s)->text(), QString());
    EXPECT_FALSE(clear->isEnabled());
    typeText(u"Sphinx"_s);
    // On disk at once, where the next start reads them.
    persistence.waitForWrites(); // written after a pause, off the interface thread
    const QString settings = QString::fromUtf8(readFile(persistence.settingsPath()));
    EXPECT_TRUE(settings.contains(u"morvane_preview_text=Sphinx"_s)) << settings.toStdString();
    EXPECT_TRUE(settings.contains(u"morvane_preview_size=12"_s)) << settings.toStdString();
}

TEST_F(Preview, WaterfallDrawsOneLinePerSize)
{
    ASSERT_TRUE(open(u"Impostor.ttf"_s));
    typeText(u"o"_s);
    toggle(named<QCheckBox>(u"Waterfall"_s));
    const QImage image = sample();
    const QList<std::pair<int, int>> runs = inkRuns(image);
    ASSERT_EQ(runs.size(), 7);
    for (qsizetype i = 1; i < runs.size(); ++i)
        EXPECT_GT(runs.at(i).second - runs.at(i).first, runs.at(i - 1).second - runs.at(i - 1).first);
    // Squares 0.7 em tall at 12 and at 96 points.
    const double first = runs.first().second - runs.first().first;
    const double last = runs.last().second - runs.last().first;
    EXPECT_NEAR(last / first, 8.0, 1.0);
}

TEST_F(Preview, EveryControlHasAnAccessibleNameAndTheTabChainReachesThem)
{
    ASSERT_TRUE(open(u"Inter.ttf"_s));
    FontPreviewView *pane = view.previewPane();
    int controls = 0;
    for (QWidget *widget : pane->findChildren<QWidget *>()) {
        const bool control = qobject_cast<QAbstractButton *>(widget) || qobject_cast<QAbstractSlider *>(widget)
                             || qobject_cast<QLineEdit *>(widget) || qobject_cast<QComboBox *>(widget)
                             || qobject_cast<SampleView *>(widget);
        if (!control || !widget->isVisibleTo(pane) || qobject_cast<QScrollBar *>(widget))
            continue;
        ++controls;
        EXPECT_FALSE(widget->accessibleName().isEmpty()) << widget->metaObject()->className();
    }
    EXPECT_GT(controls, 10);
    // Tab from the text field visits the pane's controls, each with a name.
    QLineEdit *field = named<QLineEdit>(u"Preview text"_s);
    field->setFocus();
    QStringList visited;
    for (int step = 0; step < 12; ++step) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QWidget *focus = QApplication::focusWidget();
        ASSERT_TRUE(focus);
        if (!pane->isAncestorOf(focus))
            break;
        EXPECT_FALSE(focus->accessibleName().isEmpty()) << focus->metaObject()->className();
        visited.append(focus->accessibleName());
    }
    EXPECT_TRUE(visited.contains(u"Preview size"_s)) << visited.join(u", "_s).toStdString();
    EXPECT_TRUE(visited.contains(u"Weight"_s)) << visited.join(u", "_s).toStdString();

    // Labels read as what they show, with what they are as the description.
    const struct
    {
        QString label;
        QString description;
    } heard[] = {{u"Font family"_s, u"Font family"_s}, {u"Family"_s, u"Family"_s}, {u"Style"_s, u"Style"_s}};
    for (const auto &expected : heard) {
        QLabel *label = named<QLabel>(expected.label);
        ASSERT_TRUE(label);
        QAccessibleInterface *reader = QAccessible::queryAccessibleInterface(label);
        ASSERT_TRUE(reader);
        EXPECT_EQ(reader->text(QAccessible::Name), label->text()) << expected.label.toStdString();
        EXPECT_FALSE(reader->text(QAccessible::Name).isEmpty());
        EXPECT_EQ(reader->text(QAccessible::Description), expected.description);
    }
}

TEST_F(Preview, TheSampleCanBeSelectedAndCopied)
{
    ASSERT_TRUE(open(u"DejaVuSans.ttf"_s));
    typeText(u"Hello world"_s);
    SampleView *sample = view.previewPane()->sample();
    sample->grab(); // laid out at its size
    // A drag from the start into the middle of the first word, then over everything.
    const int middle = SampleView::kPadding + qRound(sample->pixelsFor(36) * 1.5);
    const int baseline = SampleView::kPadding + qRound(sample->pixelsFor(36) * 0.5);
    QTest::mousePress(sample, Qt::LeftButton, {}, QPoint(SampleView::kPadding + 1, baseline));
    QMouseEvent move(QEvent::MouseMove, QPointF(middle, baseline), sample->mapToGlobal(QPointF(middle, baseline)),
                     Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(sample, &move);
    QTest::mouseRelease(sample, Qt::LeftButton, {}, QPoint(middle, baseline));
    const QString part = sample->selectedText();
    EXPECT_TRUE(u"Hello"_s.startsWith(part) && part.size() >= 2) << part.toStdString();
    QTest::keyClick(sample, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), part);
    QTest::keyClick(sample, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(sample->selectedText(), u"Hello world"_s);
    // The selection shows as highlight behind the ink.
    const QImage selected = sample->grab().toImage();
    const QColor highlight = sample->palette().color(QPalette::Highlight);
    bool tinted = false;
    for (int x = SampleView::kPadding; x < selected.width() / 2 && !tinted; ++x) {
        const QColor pixel = selected.pixelColor(x, SampleView::kPadding + 2);
        tinted = pixel != sample->palette().color(QPalette::Base)
                 && qAbs(pixel.hueF() - highlight.hueF()) < 0.05;
    }
    EXPECT_TRUE(tinted);
}

TEST_F(Preview, FollowsADarkPalette)
{
    ASSERT_TRUE(open(u"DejaVuSans.ttf"_s));
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(30, 30, 30));
    dark.setColor(QPalette::WindowText, QColor(235, 235, 235));
    dark.setColor(QPalette::Base, QColor(20, 20, 20));
    dark.setColor(QPalette::Text, QColor(235, 235, 235));
    view.setPalette(dark);
    // The row titles are secondary text: light on dark, not the light palette's grey.
    QLabel *title = nullptr;
    for (QLabel *label : view.previewPane()->findChildren<QLabel *>()) {
        if (label->text() == u"Family"_s && label->buddy())
            title = label;
    }
    ASSERT_TRUE(title);
    EXPECT_GT(title->palette().color(QPalette::WindowText).lightness(), 128);
    // The sample: light ink on the dark base.
    const QImage image = sample();
    const QRect inner = image.rect().adjusted(4, 4, -4, -4);
    int light = 0;
    int darkPixels = 0;
    for (int y = inner.top(); y <= inner.bottom(); y += 2) {
        for (int x = inner.left(); x <= inner.right(); x += 2) {
            const int grey = qGray(image.pixel(x, y));
            light += grey > 200;
            darkPixels += grey < 40;
        }
    }
    EXPECT_GT(light, 50);
    EXPECT_GT(darkPixels, light) << "the background stays dark";
}

// The previewed file changes on disk while the pane shows it (a sync client rewrites it,
// a copy is interrupted): the next redraw reads nothing from the old mapping, the file
// is read again, and the pane shows what it is now.
TEST_F(Preview, AFileChangedWhileShownIsReadAgain)
{
    ASSERT_TRUE(open(u"Inter.ttf"_s));
    ASSERT_EQ(value(u"Family"_s), u"Inter"_s);
    const QString path = library + u"/Inter.ttf"_s;

    // Rewritten in place, as cp does: the same file, another font's bytes.
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(readFile(u"/usr/share/fonts/truetype/dejavu/DejaVuSerif.ttf"_s));
    }
    typeText(u"Rewritten"_s);
    ASSERT_TRUE(QTest::qWaitFor([&] {
        const FontPreviewView *pane = view.previewPane();
        return !pane->isLoading() && pane->metadata() && pane->metadata()->familyName == u"DejaVu Serif"_s;
    }));
    EXPECT_EQ(value(u"Family"_s), u"DejaVu Serif"_s);
    EXPECT_TRUE(view.previewPane()->axisValues().isEmpty()); // Inter's sliders went with it
    EXPECT_GT(InkMeasure::mass(sample()), 0);

    // Cut short: nothing left to read.
    ASSERT_EQ(::truncate(QFile::encodeName(path).constData(), 100), 0);
    typeText(u"Truncated"_s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !view.previewPane()->isLoading() && !view.previewPane()->metadata(); }));
    EXPECT_EQ(named<QLabel>(u"Font status"_s)->text(), u"Unable to read font metadata"_s);
    EXPECT_EQ(named<QLabel>(u"Sample"_s)->text(), u"Unable to preview this font"_s);
    EXPECT_FALSE(view.previewPane()->sample()->isVisible());
}

// The wheel over a slider scrolls the pane and changes nothing;
// once the control has the keys, the wheel is its own.
TEST_F(Preview, TheWheelScrollsPastControlsUntilTheyHaveTheKeys)
{
    WheelGuard::install(&view);
    view.resize(1400, 360); // the pane scrolls
    ASSERT_TRUE(open(u"Axes.ttf"_s));
    QScrollBar *scroll = view.previewPane()->verticalScrollBar();
    ASSERT_TRUE(QTest::qWaitFor([&] { return scroll->maximum() > 0; })) << "laid out, the pane scrolls";
    const auto turn = [](QWidget *target) {
        const QPointF at = QRectF(target->rect()).center();
        QWheelEvent wheel(at, target->mapToGlobal(at), QPoint(), QPoint(0, -120), Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(target, &wheel);
    };
    for (QSlider *control : {named<QSlider>(u"Weight"_s), named<QSlider>(u"Preview size"_s)}) {
        ASSERT_TRUE(control);
        column()->setFocus();
        scroll->setValue(0);
        const int value = control->value();
        turn(control);
        EXPECT_EQ(control->value(), value) << control->accessibleName().toStdString();
        EXPECT_GT(scroll->value(), 0) << "the pane scrolled";
        control->setFocus();
        turn(control);
        EXPECT_NE(control->value(), value) << control->accessibleName().toStdString();
    }
}

// A preview text longer than its field opens showing its start, as it is read.
TEST_F(Preview, ALongPreviewTextOpensAtItsStart)
{
    store.setPreviewText(u"Sphinx of black quartz, judge my vow; "_s.repeated(8));
    ASSERT_TRUE(open(u"Axes.ttf"_s));
    QLineEdit *field = named<QLineEdit>(u"Preview text"_s);
    ASSERT_TRUE(field);
    EXPECT_EQ(field->cursorPosition(), 0);
}
