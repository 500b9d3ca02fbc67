// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestSupport.h"

#include "services/FontPreviewService.h"

#include <QFile>
#include <QThread>
#include <QtConcurrent/QtConcurrentRun>

#include <atomic>
#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace TestSupport;

namespace {

// What the registry would draw the font from.
QByteArray registeredBytes(const PreviewFontRegistry &registry, const QString &path)
{
    const std::shared_ptr<const MappedFile> file = registry.fontFile(path);
    return file ? file->bytes().toByteArray() : QByteArray();
}


// Counts what the cache registers, and never holds more than the cache allows.
class CountingRegistry : public PreviewFontRegistry
{
public:
    bool registerFont(const QString &path) override
    {
        ++registrations;
        const bool ok = PreviewFontRegistry::registerFont(path);
        largest = std::max(largest, count());
        return ok;
    }
    void unregisterFont(const QString &path) override
    {
        ++unregistrations;
        PreviewFontRegistry::unregisterFont(path);
    }
    int registrations = 0;
    int unregistrations = 0;
    qsizetype largest = 0;
};

struct Fixture
{
    std::atomic_int loads = 0;
    QSet<QString> unreadable;
    std::shared_ptr<CountingRegistry> registry = std::make_shared<CountingRegistry>();
    FontPreviewService service{128,
                               [this](const QString &path) -> std::optional<FontMetadata> {
                                   ++loads;
                                   if (unreadable.contains(path))
                                       return std::nullopt;
                                   FontMetadata metadata;
                                   metadata.familyName = path.section(u'/', -1);
                                   return metadata;
                               },
                               registry};

    std::optional<FontMetadata> load(const QString &path, CancellationToken token = {})
    {
        return service.load(path, token).result();
    }
};

void setModified(const QString &path, qint64 seconds)
{
    const timespec times[2] = {{seconds, 0}, {seconds, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0), 0);
}

} // namespace

TEST(FontPreviewService, UnchangedFilesAreReadOnceAndChangedOnesAgain)
{
    Fixture f;
    const QString font = writeFile(testRoot() + u"/a.otf"_s, "font bytes");
    EXPECT_EQ(f.load(font)->familyName, u"a.otf"_s);
    EXPECT_EQ(f.load(font)->familyName, u"a.otf"_s);
    EXPECT_EQ(f.loads, 1);
    EXPECT_EQ(f.registry->registrations, 1);
    EXPECT_EQ(registeredBytes(*f.registry, font), QByteArray("font bytes"));

    setModified(font, 1'000'000);
    f.load(font);
    EXPECT_EQ(f.loads, 2);
    EXPECT_EQ(f.registry->unregistrations, 1); // the earlier version's registration undone
    EXPECT_EQ(f.registry->registrations, 2);

    writeFile(font, "longer font bytes"); // a new size
    setModified(font, 1'000'000);
    f.load(font);
    EXPECT_EQ(f.loads, 3);
    EXPECT_EQ(registeredBytes(*f.registry, font), QByteArray("longer font bytes")); // the new file is drawn

    // Vanished: the stamp no longer matches, the loader runs and fails, nothing stays registered.
    f.unreadable.insert(font);
    QFile::remove(font);
    EXPECT_FALSE(f.load(font).has_value());
    EXPECT_EQ(f.loads, 4);
    EXPECT_EQ(f.registry->count(), 0);
}

TEST(FontPreviewService, UnreadableFilesAreCachedButNeverRegistered)
{
    Fixture f;
    const QString broken = writeFile(testRoot() + u"/broken.ttf"_s, "x");
    f.unreadable.insert(broken);
    EXPECT_FALSE(f.load(broken).has_value());
    EXPECT_FALSE(f.load(broken).has_value());
    EXPECT_EQ(f.loads, 1);
    EXPECT_EQ(f.registry->registrations, 0);
}

TEST(FontPreviewService, TheLeastRecentlyUsedOfMoreThan128IsEvictedAndUnregistered)
{
    Fixture f;
    QStringList fonts;
    for (int i = 0; i < 130; ++i)
        fonts.append(writeFile(testRoot() + u"/f%1.otf"_s.arg(i), "x"));
    for (int i = 0; i < 128; ++i)
        f.load(fonts[i]);
    f.load(fonts[0]); // a hit makes it the most recent: f1 is now the oldest
    f.load(fonts[128]);
    EXPECT_EQ(f.registry->count(), 128);
    EXPECT_FALSE(f.registry->fontFile(fonts[1]));
    EXPECT_TRUE(f.registry->fontFile(fonts[0]));
    f.load(fonts[129]);
    EXPECT_FALSE(f.registry->fontFile(fonts[2]));
    EXPECT_EQ(f.registry->largest, 128); // never more than 128 at any time

    const int before = f.loads;
    f.load(fonts[0]);
    EXPECT_EQ(f.loads, before); // still cached
    f.load(fonts[1]);
    EXPECT_EQ(f.loads, before + 1); // evicted, so read again

    FontPreviewService small(4, [](const QString &) { return std::optional<FontMetadata>(FontMetadata{}); });
    for (int i = 0; i < 10; ++i)
        small.load(fonts[i]).waitForFinished();
    EXPECT_EQ(small.registry()->count(), 10); // the bound is 128 whatever the capacity says
}

TEST(FontPreviewService, CancelledRequestsChangeNothing)
{
    Fixture f;
    const QString font = writeFile(testRoot() + u"/a.otf"_s, "x");
    const CancellationToken early = CancellationToken::create();
    early.cancel();
    EXPECT_FALSE(f.load(font, early).has_value());
    EXPECT_EQ(f.loads, 0);

    // Cancelled while the loader ran: its result is dropped and nothing is cached.
    const CancellationToken late = CancellationToken::create();
    FontPreviewService service(128, [&](const QString &path) {
        late.cancel();
        FontMetadata metadata;
        metadata.familyName = path;
        ++f.loads;
        return std::optional<FontMetadata>(metadata);
    });
    EXPECT_FALSE(service.load(font, late).result().has_value());
    EXPECT_EQ(service.registry()->count(), 0);
    EXPECT_TRUE(service.load(font).result().has_value());
    EXPECT_EQ(f.loads, 2); // nothing was cached by the cancelled request
}

TEST(FontPreviewService, RequestsFromManyThreadsRunOneAtATime)
{
    std::atomic_int running = 0;
    std::atomic_int overlaps = 0;
    FontPreviewService service(128, [&](const QString &) {
        if (++running > 1)
            ++overlaps;
        QThread::usleep(200);
        --running;
        return std::optional<FontMetadata>(FontMetadata{});
    });
    QList<QFuture<std::optional<FontMetadata>>> futures;
    for (int i = 0; i < 40; ++i)
        futures.append(service.load(writeFile(testRoot() + u"/f%1.otf"_s.arg(i), "x")));
    for (auto &future : futures)
        EXPECT_TRUE(future.result().has_value());
    EXPECT_EQ(overlaps, 0);
}

TEST(FontPreviewService, DefaultLoaderReadsRealFonts)
{
    FontPreviewService service;
    const QString dejaVu = u"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"_s;
    const std::optional<FontMetadata> metadata = service.load(dejaVu).result();
    ASSERT_TRUE(metadata.has_value());
    EXPECT_EQ(metadata->postScriptName, u"DejaVuSans"_s);
    QFile file(dejaVu);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(registeredBytes(*service.registry(), dejaVu), file.readAll());
}
