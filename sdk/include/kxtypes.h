// Basic types shared by the host and its modules: result codes, points and
// vectors, entity names and result buffers.
#pragma once

#include <cstdint>
#include <cmath>

namespace Kald {
// Result of database operations; 0 is success.
enum ErrorStatus : int {
    eOk = 0,
    eNotApplicable = 3,
    eInvalidInput = 5,
    eKeyNotFound = 30,
    eDuplicateKey = 31,
    eNullObjectId = 39,
    eWasErased = 81,
    eWasOpenForWrite = 82,
    eWasOpenForRead = 83,
    eNotOpenForWrite = 84,
    eWrongObjectType = 85,
    eFileNotFound = 89,
    eOutOfRange = 91,
    eInvalidIndex = 92,
};

// Application result codes of kxrxEntryPoint.
enum AppRetCode : int { eRetOK = 0, eRetError = 3 };
// Messages the host sends to kxrxEntryPoint.
enum AppMsgCode : int { kInitAppMsg = 1, kUnloadAppMsg = 2 };
}  // namespace Kald

// Editor results.
constexpr int RTNORM = 5100;   // normal
constexpr int RTNONE = 5000;   // empty input
constexpr int RTERROR = -5001; // error (ERRNO tells which)
constexpr int RTCAN = -5002;   // cancelled
constexpr int RTREJ = -5003;   // rejected by the host
constexpr int RTKWORD = -5005; // a keyword was typed; read it with kxedGetInput

// Result buffer value types.
constexpr short RTREAL = 5001;
constexpr short RTSHORT = 5003;
constexpr short RTSTR = 5005;
constexpr short RT3DPOINT = 5009;
constexpr short RTLONG = 5010;

// kxedInitGet flags.
constexpr int RSG_NONULL = 0x1;  // empty input not allowed
constexpr int RSG_NOZERO = 0x2;  // zero not allowed
constexpr int RSG_NONEG = 0x4;   // negative not allowed
constexpr int RSG_OTHER = 0x80;  // arbitrary text returned as keyword

// ERRNO after an empty pick.
constexpr int OL_ENTSELNULL = 52;

using kxds_real = double;
using kxds_point = double[3];

// A host entity name: two 64-bit words; the first identifies the entity.
struct kxds_name_t {
    std::int64_t id[2] = {0, 0};
};
using kxds_name = std::int64_t[2];

// A point or vector in 3D.
struct KxGePoint3d {
    double x = 0, y = 0, z = 0;
    constexpr KxGePoint3d() = default;
    constexpr KxGePoint3d(double ax, double ay, double az = 0) : x(ax), y(ay), z(az) {}
};
struct KxGeVector3d {
    double x = 0, y = 0, z = 0;
    constexpr KxGeVector3d() = default;
    constexpr KxGeVector3d(double ax, double ay, double az = 0) : x(ax), y(ay), z(az) {}
    double length() const { return std::sqrt(x * x + y * y + z * z); }
};

inline KxGeVector3d operator-(const KxGePoint3d& a, const KxGePoint3d& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline KxGePoint3d operator+(const KxGePoint3d& p, const KxGeVector3d& v) { return {p.x + v.x, p.y + v.y, p.z + v.z}; }
inline KxGePoint3d operator-(const KxGePoint3d& p, const KxGeVector3d& v) { return {p.x - v.x, p.y - v.y, p.z - v.z}; }
inline KxGeVector3d operator+(const KxGeVector3d& a, const KxGeVector3d& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline KxGeVector3d operator-(const KxGeVector3d& a, const KxGeVector3d& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline KxGeVector3d operator*(const KxGeVector3d& v, double s) { return {v.x * s, v.y * s, v.z * s}; }
inline KxGeVector3d operator*(double s, const KxGeVector3d& v) { return v * s; }
inline KxGeVector3d operator-(const KxGeVector3d& v) { return {-v.x, -v.y, -v.z}; }
inline double dot(const KxGeVector3d& a, const KxGeVector3d& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline KxGeVector3d cross(const KxGeVector3d& a, const KxGeVector3d& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double distance(const KxGePoint3d& a, const KxGePoint3d& b) { return (a - b).length(); }

// The host's global geometric tolerance for equality of points and
// normalisation of vectors.
constexpr double kxGeTolerance = 1e-10;

inline KxGeVector3d normalized(const KxGeVector3d& v, double tol = kxGeTolerance) {
    const double len = v.length();
    return len > tol ? v * (1.0 / len) : v;
}

// A typed value in a linked list, as system variables and dictionary
// searches hand them out. Strings are host strings (free with kald_free).
struct kxresbuf {
    kxresbuf* rbnext = nullptr;
    short restype = 0;
    union {
        double rreal;
        double rpoint[3];
        short rint;
        std::int32_t rlong;
        wchar_t* rstring;
        std::int64_t rlname[2];
    } resval{};
};
