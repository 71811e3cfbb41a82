#pragma once

#include "dbif/query/dynamic_column.h"
#include "dbif/record/in_memory_table.h"
#include "dbif/record/record_retrieval.h"

#include <QSharedPointer>
#include <QString>

// The seven record classes. Each names its table, the data table of its keys where it has any, and
// its fixed columns; the members named like DEVICE_ID are the link column of the companion tables.
// In every table, MODIFIED_TIME is an ISO 8601 text in UTC with milliseconds, and USER is who wrote
// the record. All members are constants; they are there once the program has started.

/// An import or run that brought measurements in: program, version, kind of run, begin and end. All
/// of them are texts as the writer gave them.
class DBIF_CatalogEntry : public dbif::KeyedRecordClass<DBIF_CatalogEntry, DBIF_CatalogEntryColumn>
{
public:
    static inline const QString MASTER_TABLE_NAME = QStringLiteral("catalog_entry");
    static inline const QString DATA_TABLE_NAME = QStringLiteral("catalog_entry_data");
    static inline const DBIF_FixedColumn<DBIF_CatalogEntry> ID = column("id");
    static inline const DBIF_FixedColumn<DBIF_CatalogEntry> CATALOG_ENTRY_ID = link();
    static inline const DBIF_FixedColumn<DBIF_CatalogEntry> APPLICATION = column("application");
    static inline const DBIF_FixedColumn<DBIF_CatalogEntry> APPLICATION_VERSION =
        column("application_version");
    static inline const DBIF_FixedColumn<DBIF_CatalogEntry> RUN_TYPE = column("run_type");
    static inline const DBIF_FixedColumn<DBIF_CatalogEntry> START_TIME = column("start_time");
    static inline const DBIF_FixedColumn<DBIF_CatalogEntry> END_TIME = column("end_time");
    static inline const DBIF_FixedColumn<DBIF_CatalogEntry> MODEL_TEXT = column("model_text");
    static inline const DBIF_FixedColumn<DBIF_CatalogEntry> SCHEMA_VERSION =
        column("schema_version");
    static inline const DBIF_FixedColumn<DBIF_CatalogEntry> MODIFIED_TIME = column("modified_time");
    static inline const DBIF_FixedColumn<DBIF_CatalogEntry> USER = column("user");
};

/// A measurement routine, identified by its name; `DEFINITION` is any text.
class DBIF_Routine : public dbif::RecordClass<DBIF_Routine, dbif::RecordTable::Routine>
{
public:
    static inline const QString MASTER_TABLE_NAME = QStringLiteral("routine");
    static inline const DBIF_FixedColumn<DBIF_Routine> ID = column("id");
    static inline const DBIF_FixedColumn<DBIF_Routine> NAME = column("name");
    static inline const DBIF_FixedColumn<DBIF_Routine> DEFINITION = column("definition");
    static inline const DBIF_FixedColumn<DBIF_Routine> MODIFIED_TIME = column("modified_time");
    static inline const DBIF_FixedColumn<DBIF_Routine> USER = column("user");
};

/// A die on a wafer, identified by lot, wafer, die and block.
class DBIF_Die : public dbif::RecordClass<DBIF_Die, dbif::RecordTable::Die>
{
public:
    static inline const QString MASTER_TABLE_NAME = QStringLiteral("die");
    static inline const DBIF_FixedColumn<DBIF_Die> ID = column("id");
    static inline const DBIF_FixedColumn<DBIF_Die> LOT = column("lot");
    static inline const DBIF_FixedColumn<DBIF_Die> WAFER = column("wafer");
    static inline const DBIF_FixedColumn<DBIF_Die> DIE = column("die");
    static inline const DBIF_FixedColumn<DBIF_Die> BLOCK = column("block");
    static inline const DBIF_FixedColumn<DBIF_Die> MODIFIED_TIME = column("modified_time");
    static inline const DBIF_FixedColumn<DBIF_Die> USER = column("user");
};

/// A device on a die, identified by its die, its name, the subsite that it stands in and the
/// position within that.
class DBIF_Device : public dbif::KeyedRecordClass<DBIF_Device, DBIF_DeviceColumn>
{
public:
    static inline const QString MASTER_TABLE_NAME = QStringLiteral("device");
    static inline const QString DATA_TABLE_NAME = QStringLiteral("device_data");
    static inline const DBIF_FixedColumn<DBIF_Device> ID = column("id");
    static inline const DBIF_FixedColumn<DBIF_Device> DEVICE_ID = link();
    static inline const DBIF_FixedColumn<DBIF_Device> NAME = column("name");
    static inline const DBIF_FixedColumn<DBIF_Device> DEVICE_TYPE_ = column("device_type");
    static inline const DBIF_FixedColumn<DBIF_Device> PARENT_SUBSITE_NAME =
        column("parent_subsite_name");
    static inline const DBIF_FixedColumn<DBIF_Device> POSITION_WITHIN_SUBSITE =
        column("position_within_subsite");
    static inline const DBIF_FixedColumn<DBIF_Device> MODIFIED_TIME = column("modified_time");
    static inline const DBIF_FixedColumn<DBIF_Device> USER = column("user");
};

/// A measurement of a device by a routine, brought in by a catalogue entry. Its temperature is in
/// degrees Celsius. The latest measurements are those that none supersedes.
class DBIF_Measurement : public dbif::KeyedRecordClass<DBIF_Measurement, DBIF_MeasurementColumn>
{
public:
    static inline const QString MASTER_TABLE_NAME = QStringLiteral("measurement");
    static inline const QString DATA_TABLE_NAME = QStringLiteral("measurement_data");
    static inline const DBIF_FixedColumn<DBIF_Measurement> ID = column("id");
    static inline const DBIF_FixedColumn<DBIF_Measurement> MEASUREMENT_ID = link();
    static inline const DBIF_FixedColumn<DBIF_Measurement> TEMPERATURE = column("temperature");
    static inline const DBIF_FixedColumn<DBIF_Measurement> MODIFIED_TIME = column("modified_time");
    static inline const DBIF_FixedColumn<DBIF_Measurement> USER = column("user");
};

/// A condition under which a measurement was made; its setups belong to it.
class DBIF_MeasurementCondition
    : public dbif::KeyedRecordClass<DBIF_MeasurementCondition, DBIF_MeasurementConditionColumn>
{
public:
    static inline const QString MASTER_TABLE_NAME = QStringLiteral("measurement_condition");
    static inline const QString DATA_TABLE_NAME = QStringLiteral("measurement_condition_data");
    static inline const DBIF_FixedColumn<DBIF_MeasurementCondition> ID = column("id");
    static inline const DBIF_FixedColumn<DBIF_MeasurementCondition> MEASUREMENT_CONDITION_ID =
        link();
    static inline const DBIF_FixedColumn<DBIF_MeasurementCondition> NAME = column("name");
    static inline const DBIF_FixedColumn<DBIF_MeasurementCondition> MODIFIED_TIME =
        column("modified_time");
    static inline const DBIF_FixedColumn<DBIF_MeasurementCondition> USER = column("user");
};

/// A table of points measured or simulated in one go: its columns are the keys of setups, inputs
/// and outputs. Besides the class operations, an object is the points of one setup in memory.
class DBIF_Setup : public dbif::KeyedRecordClass<DBIF_Setup, DBIF_SetupColumn>,
                   public DBIF_InMemoryTable<DBIF_SetupColumn>
{
public:
    static inline const QString MASTER_TABLE_NAME = QStringLiteral("setup");
    static inline const QString DATA_TABLE_NAME = QStringLiteral("setup_data");
    static inline const DBIF_FixedColumn<DBIF_Setup> ID = column("id");
    static inline const DBIF_FixedColumn<DBIF_Setup> SETUP_ID = link();
    static inline const DBIF_FixedColumn<DBIF_Setup> NAME = column("name");
    static inline const DBIF_FixedColumn<DBIF_Setup> PATH = column("path");
    static inline const DBIF_FixedColumn<DBIF_Setup> RUN_TYPE = column("run_type");
    static inline const DBIF_FixedColumn<DBIF_Setup> DATA_ORIGIN = column("data_origin");
    static inline const DBIF_FixedColumn<DBIF_Setup> MODIFIED_TIME = column("modified_time");
    static inline const DBIF_FixedColumn<DBIF_Setup> USER = column("user");

    /// The setup with that id and all its points, read in one read transaction (its own, unless one
    /// is open); null when there is none. Throws `DBIF_Exception` on a database error and on
    /// damaged data.
    static QSharedPointer<DBIF_Setup> get(DBIF_Connection& connection, int id);

private:
    using DBIF_InMemoryTable::DBIF_InMemoryTable;
};
