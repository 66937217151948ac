#include "bundled/SameFaults.h"

#include <algorithm>
#include <iterator>

namespace Orvanta {

namespace {

enum class Fault {
    Null,
    Uninitialized,
    Leak,
    Freed,
    Bounds,
    Division,
    Arithmetic,
    DeadStore,
    DeadCondition,
    MissingReturn,
    Format,
    Dangling,
    Size,
    Iterator,
    VirtualCall,
    Moved,
};

struct CheckFault {
    std::string_view check;
    Fault fault;
};

// A check that finds several kinds of fault has several rows.
constexpr CheckFault Rows[] = {
    {"nullPointer", Fault::Null},
    {"nullPointerRedundantCheck", Fault::Null},
    {"nullPointerDefaultArg", Fault::Null},
    {"nullPointerArithmetic", Fault::Null},
    {"clang-analyzer-core.NullDereference", Fault::Null},
    {"clang-analyzer-core.NonNullParamChecker", Fault::Null},
    {"clang-analyzer-core.CallAndMessage", Fault::Null},
    {"clang-analyzer-unix.cstring.NullArg", Fault::Null},
    {"clang-diagnostic-nonnull", Fault::Null},
    {"clang-diagnostic-null-dereference", Fault::Null},
    {"uninitvar", Fault::Uninitialized},
    {"legacyUninitvar", Fault::Uninitialized},
    {"uninitdata", Fault::Uninitialized},
    {"uninitStructMember", Fault::Uninitialized},
    {"clang-analyzer-core.CallAndMessage", Fault::Uninitialized},
    {"clang-analyzer-core.UndefinedBinaryOperatorResult", Fault::Uninitialized},
    {"clang-analyzer-core.uninitialized.ArraySubscript", Fault::Uninitialized},
    {"clang-analyzer-core.uninitialized.Assign", Fault::Uninitialized},
    {"clang-analyzer-core.uninitialized.Branch", Fault::Uninitialized},
    {"clang-analyzer-core.uninitialized.UndefReturn", Fault::Uninitialized},
    {"clang-diagnostic-conditional-uninitialized", Fault::Uninitialized},
    {"clang-diagnostic-sometimes-uninitialized", Fault::Uninitialized},
    {"clang-diagnostic-uninitialized", Fault::Uninitialized},
    {"memleak", Fault::Leak},
    {"leakReturnValNotUsed", Fault::Leak},
    {"leakNoVarFunctionCall", Fault::Leak},
    {"resourceLeak", Fault::Leak},
    {"clang-analyzer-unix.Malloc", Fault::Leak},
    {"clang-analyzer-cplusplus.NewDeleteLeaks", Fault::Leak},
    {"clang-analyzer-alpha.unix.Stream", Fault::Leak},
    {"deallocuse", Fault::Freed},
    {"deallocret", Fault::Freed},
    {"doubleFree", Fault::Freed},
    {"useClosedFile", Fault::Freed},
    {"clang-analyzer-unix.Malloc", Fault::Freed},
    {"clang-analyzer-cplusplus.NewDelete", Fault::Freed},
    {"clang-analyzer-cplusplus.InnerPointer", Fault::Freed},
    {"clang-analyzer-alpha.unix.Stream", Fault::Freed},
    {"arrayIndexOutOfBounds", Fault::Bounds},
    {"arrayIndexOutOfBoundsCond", Fault::Bounds},
    {"bufferAccessOutOfBounds", Fault::Bounds},
    {"containerOutOfBounds", Fault::Bounds},
    {"negativeIndex", Fault::Bounds},
    {"argumentSize", Fault::Bounds},
    {"clang-analyzer-alpha.security.ArrayBoundV2", Fault::Bounds},
    {"clang-analyzer-alpha.unix.cstring.OutOfBounds", Fault::Bounds},
    {"clang-analyzer-core.uninitialized.UndefReturn", Fault::Bounds}, // what lies beyond the end has no value
    {"clang-analyzer-core.uninitialized.Assign", Fault::Bounds},
    {"clang-diagnostic-array-bounds", Fault::Bounds},
    {"clang-diagnostic-fortify-source", Fault::Bounds},
    {"zerodiv", Fault::Division},
    {"zerodivcond", Fault::Division},
    {"clang-analyzer-core.DivideZero", Fault::Division},
    {"clang-diagnostic-division-by-zero", Fault::Division},
    {"integerOverflow", Fault::Arithmetic},
    {"shiftTooManyBits", Fault::Arithmetic},
    {"shiftNegative", Fault::Arithmetic},
    {"clang-analyzer-core.UndefinedBinaryOperatorResult", Fault::Arithmetic},
    {"clang-diagnostic-integer-overflow", Fault::Arithmetic},
    {"clang-diagnostic-shift-count-negative", Fault::Arithmetic},
    {"clang-diagnostic-shift-count-overflow", Fault::Arithmetic},
    {"unreadVariable", Fault::DeadStore},
    {"redundantAssignment", Fault::DeadStore},
    {"redundantInitialization", Fault::DeadStore},
    {"clang-analyzer-deadcode.DeadStores", Fault::DeadStore},
    {"knownConditionTrueFalse", Fault::DeadCondition},
    {"unsignedLessThanZero", Fault::DeadCondition},
    {"unsignedPositive", Fault::DeadCondition},
    {"incorrectLogicOperator", Fault::DeadCondition},
    {"compareValueOutOfTypeRangeError", Fault::DeadCondition},
    {"clang-diagnostic-tautological-compare", Fault::DeadCondition},
    {"clang-diagnostic-tautological-constant-compare", Fault::DeadCondition},
    {"clang-diagnostic-tautological-constant-out-of-range-compare", Fault::DeadCondition},
    {"clang-diagnostic-tautological-overlap-compare", Fault::DeadCondition},
    {"missingReturn", Fault::MissingReturn},
    {"clang-diagnostic-return-type", Fault::MissingReturn},
    {"wrongPrintfScanfArgNum", Fault::Format},
    {"invalidPrintfArgType_float", Fault::Format},
    {"invalidPrintfArgType_s", Fault::Format},
    {"invalidPrintfArgType_sint", Fault::Format},
    {"invalidPrintfArgType_uint", Fault::Format},
    {"invalidScanfArgType_int", Fault::Format},
    {"invalidScanfArgType_float", Fault::Format},
    {"invalidScanfArgType_s", Fault::Format},
    {"clang-diagnostic-format", Fault::Format},
    {"clang-diagnostic-format-extra-args", Fault::Format},
    {"clang-diagnostic-format-insufficient-args", Fault::Format},
    {"autoVariables", Fault::Dangling},
    {"danglingLifetime", Fault::Dangling},
    {"danglingTemporaryLifetime", Fault::Dangling},
    {"invalidLifetime", Fault::Dangling},
    {"returnDanglingLifetime", Fault::Dangling},
    {"returnReference", Fault::Dangling},
    {"returnTempReference", Fault::Dangling},
    {"clang-analyzer-core.StackAddressEscape", Fault::Dangling},
    {"clang-analyzer-cplusplus.InnerPointer", Fault::Dangling},
    {"clang-diagnostic-dangling", Fault::Dangling},
    {"clang-diagnostic-dangling-gsl", Fault::Dangling},
    {"clang-diagnostic-return-stack-address", Fault::Dangling},
    {"pointerSize", Fault::Size},
    {"sizeofwithsilentarraypointer", Fault::Size},
    {"bugprone-sizeof-expression", Fault::Size},
    {"clang-analyzer-unix.MallocSizeof", Fault::Size},
    {"clang-diagnostic-sizeof-array-argument", Fault::Size},
    {"clang-diagnostic-sizeof-pointer-div", Fault::Size},
    {"clang-diagnostic-sizeof-pointer-memaccess", Fault::Size},
    {"eraseDereference", Fault::Iterator},
    {"invalidContainer", Fault::Iterator},
    {"invalidContainerLoop", Fault::Iterator},
    {"clang-analyzer-alpha.cplusplus.InvalidatedIterator", Fault::Iterator},
    {"pureVirtualCall", Fault::VirtualCall},
    {"virtualCallInConstructor", Fault::VirtualCall},
    {"clang-analyzer-cplusplus.PureVirtualCall", Fault::VirtualCall},
    {"clang-analyzer-optin.cplusplus.VirtualCall", Fault::VirtualCall},
    {"accessMoved", Fault::Moved},
    {"bugprone-use-after-move", Fault::Moved},
    {"clang-analyzer-cplusplus.Move", Fault::Moved},
};

bool Finds(std::string_view check, Fault fault) {
    return std::any_of(std::begin(Rows), std::end(Rows),
                       [&](const CheckFault& row) { return row.check == check && row.fault == fault; });
}

} // namespace

bool FindSameFault(std::string_view left, std::string_view right) {
    return left != right && std::any_of(std::begin(Rows), std::end(Rows), [&](const CheckFault& row) {
               return row.check == left && Finds(right, row.fault);
           });
}

} // namespace Orvanta
