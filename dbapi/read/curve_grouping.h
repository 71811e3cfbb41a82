#pragma once

#include "dbif/retrieval/result_column.h"

#include <cstddef>
#include <string>
#include <vector>

namespace dbapi {
/// Points that belong together, in the order in which they were measured.
struct Curve
{
    /// The id of the setup whose points these are; 0 for points of many records.
    int setup = 0;
    /// The value of each parameter of the set, numbers in six digits; empty where it has none.
    std::vector<std::string> parameters;
    /// The points; both have the same length and no 'no value' in them.
    std::vector<double> x;
    std::vector<double> y;
};

/// A quantity that may tell curves apart.
struct CurveParameter
{
    /// The keyword that was asked for, an input's name, or a builtin keyname ("$DEVNAME").
    std::string name;
    /// Tells whether its values are numbers.
    bool isNumber = false;
};

/// The meaning of the numbers along an axis.
struct CurveAxis
{
    /// The texts that the numbers 0, 1, 2 ... stand for, ascending, where the keyword holds texts;
    /// empty where it holds numbers.
    std::vector<std::string> labels;
    /// Tells whether the keyword holds complex numbers, of which the magnitudes were taken.
    bool isMagnitude = false;
};

/// Numbers for an axis: those of a column, or the places of its texts. NaN is 'no value'.
std::vector<double> axis_numbers(dbif::ResultColumn column, CurveAxis* axis);

/// Curves, with the parameters that may tell them apart.
struct CurveSet
{
    CurveAxis x;
    CurveAxis y;
    /// Tells whether the points of a curve follow each other in a sweep; otherwise each stands for
    /// itself.
    bool isSwept = false;
    /// In the order of `Curve::parameters`.
    std::vector<CurveParameter> parameters;
    std::vector<Curve> curves;
    /// The number of setups that were left out because they sweep something else than x while
    /// others sweep x.
    std::size_t setupsLeftOut = 0;
};

/// Rows out of which curves are made: those of a setup side by side, in their stored order.
struct CurveRows
{
    struct Parameter
    {
        CurveParameter facts;
        enum class Kind { OfRecord, Input, Output };

        /// Inputs are what setups sweep.
        Kind kind = Kind::OfRecord;
        dbif::ResultColumn values;
    };

    /// Tells whether rows of a setup are a sweep; otherwise rows of many records stand side by
    /// side.
    bool isSwept = false;
    /// The setup of each row, of sweeps only.
    std::vector<double> setups;
    dbif::ResultColumn x;
    dbif::ResultColumn y;
    std::vector<Parameter> parameters;
};

/// Puts rows together that agree in their setup and parameters; those without x or y are left out.
///
/// Within a setup, an input that changes along with x is no parameter (the gate voltage of a
/// transistor whose gate and drain are swept together). A setup in which x changes far less often
/// than an input sweeps that one; it is left out when others do sweep x.
CurveSet group_into_curves(CurveRows rows);
} // namespace dbapi
