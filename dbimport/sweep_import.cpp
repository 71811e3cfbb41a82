#include "dbimport/sweep_import.h"

#include "dbapi/words/builtin_keynames.h"
#include "dbapi/words/text_rules.h"
#include "dbif/connection/write_retry.h"
#include "dbif/host/error_text.h"
#include "dbif/host/host_number.h"
#include "dbif/host/host_string.h"
#include "dbimport/sweep_read_ahead.h"

#include <map>
#include <optional>
#include <set>
#include <utility>

namespace dbapi {
namespace {
using CatalogEntryParts = RecordParts<dbif::CatalogEntryFields>;

/// The values that the files of an import must agree in, by keyword.
std::map<std::string, std::string> catalogue_texts(const CatalogEntryParts& entry)
{
    std::map<std::string, std::string> texts;
    dbif::for_each_field(entry.fields, [&texts](std::string_view column, const std::string& text) {
        std::string keyword;
        dbapi_convert_keyword_to_builtin_keyname("catalog_entry." + std::string(column), &keyword);
        texts[keyword] = text;
    });
    for (const dbif::KeyValue& key : entry.keys) {
        const bool isNumber = key.kind == dbif::ValueKind::Double;
        const std::string datatype = dbif::to_utf8(dbif::datatype_name(key.kind));
        texts["Key(" + key.name + ",catalog_entry," + datatype + ")"] =
            isNumber ? dbif::double_text(key.number) : key.text;
    }
    return texts;
}

/// A record that the last file named; the next one often names it again.
template <typename Fields>
struct SharedRecord
{
    RecordParts<Fields> parts;
    std::optional<int> id;

    [[nodiscard]] bool is(const RecordParts<Fields>& named) const
    {
        return id.has_value() && parts == named;
    }
};

class Import
{
public:
    Import(DBIF_Connection connection, const ImportOptions& options)
        : connection_(std::move(connection)), options_(options)
    {}

    void add(const std::string& file, const ReadSweep& sweep);
    ImportResult finish();

private:
    void storeUnlessRefused(const std::string& file, const ReadSweep& sweep);
    void store(const std::string& file, const ReadSweep& sweep);
    int deviceOf(const Annotations& annotations);
    int routineOf(const Annotations& annotations);
    /// Tells whether the file says the same of the catalogue entry as the files before it.
    bool isOneEntry(const std::string& file, const Annotations& annotations);
    /// Tells whether the file says which device it belongs to, or need not.
    bool hasDevice(const std::string& file, const Annotations& annotations);
    void addFault(const std::string& file, std::size_t line, const std::string& text);
    void noteEffects();

    DBIF_Connection connection_;
    ImportOptions options_;
    /// Made for the first file that is read, so that other writers wait as little as possible.
    std::optional<dbif::RecordWriter> writer_;
    int catalogEntry_ = 0;
    /// The catalogue entry, and the file that it was read from.
    std::optional<CatalogEntryParts> catalogue_;
    std::string catalogueFile_;
    SharedRecord<dbif::DieFields> lastDie_;
    SharedRecord<dbif::DeviceFields> lastDevice_;
    SharedRecord<dbif::RoutineFields> lastRoutine_;
    std::set<int> devices_;
    /// The sweep of each new setup.
    std::map<int, SupersedingSweep> sweeps_;
    ImportResult result_;
};

void Import::add(const std::string& file, const ReadSweep& sweep)
{
    const AnnotatedCsv& csv = sweep.csv;
    ++result_.files;
    result_.hasUnreadableFile = result_.hasUnreadableFile || csv.isUnreadable;
    const std::size_t before = result_.faultCount;
    for (const FileFault& fault : csv.faults.kept()) {
        addFault(file, fault.line, fault.text);
    }
    result_.faultCount = before + csv.faults.count();
    if (csv.faults.isEmpty() && hasDevice(file, csv.annotations) &&
        isOneEntry(file, csv.annotations)) {
        storeUnlessRefused(file, sweep);
    }
    result_.faultyFiles += result_.faultCount > before ? 1 : 0;
}

void Import::storeUnlessRefused(const std::string& file, const ReadSweep& sweep)
{
    if (!writer_.has_value()) {
        writer_.emplace(connection_);
    }
    try {
        store(file, sweep);
    } catch (const DBIF_Exception& exception) {
        // A record that the writer refuses is a fault of the file, and the next files may have
        // more.
        if (!exception.sql().isEmpty() || exception.error().type() == QSqlError::TransactionError) {
            throw;
        }
        addFault(file, 0, dbif::trimmed(convert_sql_error_to_string(exception.error()).str()));
    }
}

bool Import::hasDevice(const std::string& file, const Annotations& annotations)
{
    if (options_.allowsAnonymous || names_device(annotations)) {
        return true;
    }
    ++result_.anonymousFiles;
    addFault(
        file, 0,
        "It names no device, so it would supersede any other such sweep of the same routine, "
        "condition and name. Add a line above the header row, like \"# $DEVNAME = nmos1\".");
    return false;
}

bool Import::isOneEntry(const std::string& file, const Annotations& annotations)
{
    const CatalogEntryParts& entry = annotations.catalogEntry;
    if (!catalogue_.has_value()) {
        catalogue_ = entry;
        catalogueFile_ = file;
        return true;
    }
    if (entry == *catalogue_) {
        return true;
    }
    // They may still say the same in another order.
    const std::map<std::string, std::string> texts = catalogue_texts(entry);
    const std::map<std::string, std::string> first = catalogue_texts(*catalogue_);
    std::map<std::string, std::string> either = texts;
    either.insert(first.begin(), first.end());
    const auto said = [](const auto& side, const std::string& keyword) {
        const auto found = side.find(keyword);
        return found == side.end() ? "no " + keyword : keyword + " = " + found->second;
    };
    for (const auto& [keyword, text] : either) {
        const std::string here = said(texts, keyword);
        const std::string there = said(first, keyword);
        if (here != there) {
            std::string fault = "It has " + here + ", but ";
            fault += dbapi::quoted(catalogueFile_) + " has " + there;
            fault += ". All files of one import share one catalogue entry: make them equal, or "
                     "import the files apart.";
            addFault(file, 0, fault);
            return false;
        }
    }
    return true;
}

void Import::addFault(const std::string& file, std::size_t line, const std::string& text)
{
    if (result_.faults.size() < FileFaults::kMostKept) {
        result_.faults.push_back({file, line, text});
    }
    ++result_.faultCount;
}

int Import::deviceOf(const Annotations& annotations)
{
    const RecordParts<dbif::DieFields>& die = annotations.die;
    const RecordParts<dbif::DeviceFields>& device = annotations.device;
    if (!lastDie_.is(die)) {
        lastDevice_.id.reset();
        lastDie_.id = die.isEmpty() ? 0 : writer_->findOrAddDie(die.fields);
        lastDie_.parts = die;
    }
    if (*lastDie_.id == 0 && device.isEmpty()) {
        return 0;
    }
    if (!lastDevice_.is(device)) {
        lastDevice_.id = writer_->findOrAddDevice(*lastDie_.id, device.fields, device.keys);
        lastDevice_.parts = device;
        devices_.insert(*lastDevice_.id);
    }
    return *lastDevice_.id;
}

int Import::routineOf(const Annotations& annotations)
{
    const RecordParts<dbif::RoutineFields>& routine = annotations.routine;
    if (!lastRoutine_.is(routine)) {
        lastRoutine_.id = routine.isEmpty() ? 0 : writer_->findOrAddRoutine(routine.fields);
        lastRoutine_.parts = routine;
    }
    return *lastRoutine_.id;
}

void Import::store(const std::string& file, const ReadSweep& sweep)
{
    const Annotations& annotations = sweep.csv.annotations;
    if (catalogEntry_ == 0) {
        const CatalogEntryParts& entry = annotations.catalogEntry;
        catalogEntry_ = writer_->addCatalogEntry(entry.fields, entry.keys);
    }
    dbif::MeasurementRecord measurement;
    measurement.catalogEntry = catalogEntry_;
    measurement.device = deviceOf(annotations);
    measurement.routine = routineOf(annotations);
    measurement.temperature = annotations.temperature;
    measurement.keys = annotations.measurementKeys;
    const int condition = writer_->addCondition(
        writer_->addMeasurement(measurement), annotations.condition.fields,
        annotations.condition.keys);
    const int setup =
        writer_->addPackedSetup(condition, annotations.setup.fields, sweep.columns, file);
    sweeps_[setup] = {file, annotations.device.fields.name.value_or("")};
    ++result_.setups;
    result_.points += sweep.csv.points;
}

void Import::noteEffects()
{
    result_.newKeys = writer_->newKeys();
    result_.supersededSetups = writer_->supersededSetups().size();
    int last = 0;
    for (const dbif::SupersededSetup& superseded : writer_->supersededSetups()) {
        if (superseded.newSetup != std::exchange(last, superseded.newSetup)) {
            result_.superseding.push_back(sweeps_.at(superseded.newSetup));
        }
    }
}

ImportResult Import::finish()
{
    result_.devices = devices_.size();
    if (result_.faultCount == 0 && writer_.has_value()) {
        writer_->commit();
        noteEffects();
    }
    return std::move(result_);
}
} // namespace

ImportResult import_sweeps(
    const DBIF_Connection& connection,
    const std::vector<std::string>& files,
    const ImportProgress& progress,
    const ImportOptions& options)
{
    ImportResult result;
    // Repeated from the first file on: a transaction that fails takes all of them with it.
    dbif::write_with_retries(connection, [&] {
        Import import(connection, options);
        SweepReadAhead sweeps(files, progress);
        for (const std::string& file : files) {
            import.add(file, sweeps.next());
        }
        result = import.finish();
    });
    return result;
}
} // namespace dbapi
