// What the examples of the help texts are written like for the system's own shell.
#pragma once

namespace tessarlorn::cli {

#ifdef _WIN32
inline constexpr const char* kSetDsnExample = "set TESSARLORN_DSN=Connect={Embedded=orders.db};User=16394";
inline constexpr const char* kNestedValueExample =
    R"("vctPara=[{\"FID\":12,\"FWeight\":1.25,\"FLogisticsCost\":8,\"FWeighttingMan\":16394,\"FWeighttingStatus\":1}]")";
inline constexpr const char* kPrintJsonExample = R"(echo {"dctPara":{"FID":"12,15"}})";
inline constexpr const char* kPrintSqlExample = "echo select getdate() Now";
#else
inline constexpr const char* kSetDsnExample = R"(export TESSARLORN_DSN="Connect={Embedded=orders.db};User=16394")";
inline constexpr const char* kNestedValueExample =
    R"('vctPara=[{"FID":12,"FWeight":1.25,"FLogisticsCost":8,"FWeighttingMan":16394,"FWeighttingStatus":1}]')";
inline constexpr const char* kPrintJsonExample = R"(echo '{"dctPara":{"FID":"12,15"}}')";
inline constexpr const char* kPrintSqlExample = R"(echo "select getdate() Now")";
#endif

}  // namespace tessarlorn::cli
