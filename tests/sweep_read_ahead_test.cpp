#include "dbimport/sweep_read_ahead.h"

#include "tests/support/temp_directory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <pthread.h>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {
using dbapi::ReadSweep;
using dbapi::SweepReadAhead;

/// More files than are read ahead: small ones, some with a fault, one that is missing, and two that
/// are larger than all that may wait.
class SweepFolder
{
public:
    SweepFolder()
    {
        std::string many = "IND.VG,OUTD.ID\n";
        for (int row = 0; row < 500'000; ++row) {
            many += std::to_string(row) + ",1.5e-9\n";
        }
        for (int i = 0; i < 600; ++i) {
            const bool isLarge = i == 300 || i == 301;
            const std::string text =
                isLarge ? many : "IND.VG\n" + std::to_string(i) + (i % 50 == 7 ? "V\n" : "\n");
            files.push_back(folder_.file("sweep" + std::to_string(i) + ".csv"));
            if (i != 400) {
                test_support::write_file(files.back(), text);
                bytes += text.size();
            }
        }
    }

    std::vector<std::string> files;
    std::size_t bytes = 0;

private:
    test_support::TempDirectory folder_;
};

TEST(SweepReadAhead, GivesWhatReadingOneAfterTheOtherGives)
{
    const SweepFolder folder;
    const std::thread::id caller = std::this_thread::get_id();
    std::size_t told = 0;
    SweepReadAhead sweeps(folder.files, [&](std::size_t bytes) {
        EXPECT_EQ(std::this_thread::get_id(), caller);
        told += bytes;
    });
    for (const std::string& file : folder.files) {
        dbapi::AnnotatedCsv expected = dbapi::read_annotated_csv(file);
        const ReadSweep sweep = sweeps.next();
        ASSERT_EQ(sweep.csv.points, expected.points) << file;
        EXPECT_EQ(sweep.csv.isUnreadable, expected.isUnreadable) << file;
        ASSERT_EQ(sweep.csv.faults.count(), expected.faults.count()) << file;
        for (std::size_t i = 0; i < expected.faults.count(); ++i) {
            EXPECT_EQ(sweep.csv.faults.kept()[i].text, expected.faults.kept()[i].text);
        }
        const auto packed = dbif::pack_sweep(std::move(expected.columns));
        ASSERT_EQ(sweep.columns.size(), packed.size()) << file;
        for (std::size_t i = 0; i < packed.size(); ++i) {
            EXPECT_EQ(sweep.columns[i].name, packed[i].name) << file;
            EXPECT_TRUE(sweep.columns[i].chunks == packed[i].chunks) << file;
        }
    }
    EXPECT_EQ(told, folder.bytes);
}

TEST(SweepReadAhead, ReadsWithoutThreadsWhereThereAreNone)
{
    const SweepFolder folder;
    pthread_attr_t usual;
    pthread_attr_t impossible;
    ASSERT_EQ(pthread_getattr_default_np(&usual), 0);
    ASSERT_EQ(pthread_getattr_default_np(&impossible), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&impossible, std::size_t{1} << 50U), 0);
    ASSERT_EQ(pthread_setattr_default_np(&impossible), 0);
    std::size_t told = 0;
    SweepReadAhead sweeps(folder.files, [&told](std::size_t bytes) { told += bytes; });
    EXPECT_EQ(pthread_setattr_default_np(&usual), 0);
    std::size_t faults = 0;
    for (std::size_t i = 0; i < folder.files.size(); ++i) {
        faults += sweeps.next().csv.faults.count();
    }
    EXPECT_EQ(faults, 13U); // 12 wrong numbers and a missing file
    EXPECT_EQ(told, folder.bytes);
}

TEST(SweepReadAhead, EndsBeforeItsFilesDo)
{
    const SweepFolder folder;
    for (const std::size_t taken : {0, 1, 300, 301, 450}) {
        SweepReadAhead sweeps(folder.files, nullptr);
        for (std::size_t i = 0; i < taken; ++i) {
            sweeps.next();
        }
    }
    SweepReadAhead sweeps(folder.files, [](std::size_t) { throw std::runtime_error("enough"); });
    EXPECT_THROW(sweeps.next(), std::runtime_error);
}
} // namespace
