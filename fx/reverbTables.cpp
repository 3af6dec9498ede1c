#include "fx/reverbTables.h"

namespace tolm {

namespace {

// A small room: gains fall from about a fifth, the signs are mixed, and left and right agree in
// few places. Positions count from 1599.
constexpr EarlyTap kRoomLeft[] = {
    {1693, 0.328189f},  {1980, 0.199197f},  {2069, -0.040073f}, {2160, 0.111158f},
    {2353, 0.182983f},  {2907, 0.035209f},  {3149, 0.125768f},  {3253, -0.126053f},
    {3305, 0.145355f},  {3354, -0.143166f}, {3410, -0.05828f},  {3446, -0.095106f},
    {3633, 0.111108f},  {4729, 0.064587f},  {4888, 0.078393f},  {5009, 0.076509f},
    {5034, 0.043311f},  {5145, 0.069557f},  {5239, 0.073572f},  {5253, -0.047894f},
    {5553, -0.075618f}, {5617, 0.033182f},  {5854, 0.049428f},  {6073, 0.036541f},
    {6293, 0.027113f},  {6379, 0.052715f},  {6503, -0.059409f}, {6520, -0.035111f},
    {6601, 0.045907f},  {6638, -0.038773f}, {6706, -0.030258f}, {6822, 0.04787f},
    {7098, 0.034888f},  {7438, 0.042782f},  {7463, -0.039245f}, {7591, 0.045206f},
    {7965, -0.016996f}, {8065, 0.0285f},    {8129, -0.021529f}, {8196, -0.037169f},
    {8288, 0.038324f},  {8476, 0.035696f},  {8503, 0.016382f},  {8943, 0.013052f},
    {9032, -0.024959f}, {9397, -0.021232f}, {9559, 0.02593f},
};
constexpr EarlyTap kRoomRight[] = {
    {1609, 0.239487f},  {1693, -0.107844f}, {2069, 0.1086f},    {2137, 0.130894f},
    {2321, 0.07142f},   {2353, -0.061406f}, {2541, 0.071192f},  {2735, 0.178952f},
    {2871, 0.09783f},   {3089, 0.155338f},  {3209, -0.128671f}, {3385, -0.118885f},
    {3619, 0.130154f},  {3819, -0.124131f}, {3899, -0.120762f}, {4037, 0.069833f},
    {4231, -0.112884f}, {4351, -0.10394f},  {4555, 0.064938f},  {4705, 0.064356f},
    {4889, 0.063144f},  {5087, 0.074962f},  {5175, 0.070398f},  {5355, -0.079908f},
    {5507, 0.067336f},  {5657, -0.063337f}, {5821, 0.061285f},  {5917, -0.030312f},
    {6033, 0.058415f},  {6203, 0.063969f},  {6407, 0.047558f},  {6489, -0.042214f},
    {6659, 0.02899f},   {6847, 0.046769f},  {6985, 0.022733f},  {7081, -0.022734f},
    {7253, 0.038179f},  {7361, 0.034089f},  {7483, 0.044214f},  {7627, 0.030157f},
    {7849, 0.035611f},  {7967, 0.036201f},  {8093, 0.020493f},  {8177, 0.033821f},
    {8332, 0.029853f},  {8454, 0.025153f},  {8598, -0.035704f},
};

// Large rooms.
constexpr EarlyTap kHallLeft[] = {
    {1394, 0.790008f},   {1545, -0.282511f}, {2760, 0.39788f},   {2835, -0.225021f},
    {6619, 0.178506f},   {7815, 0.183041f},  {8044, 0.269866f},  {8153, -0.1136f},
    {8939, 0.163575f},   {8975, 0.072582f},  {9048, 0.148236f},  {9164, 0.210556f},
    {9480, 0.160262f},   {9576, -0.074949f}, {9612, 0.141124f},  {12180, 0.112653f},
    {12387, 0.095003f},  {12539, 0.106233f}, {13753, 0.122935f}, {14042, 0.110842f},
    {14059, -0.072162f}, {14139, 0.162574f}, {16213, 0.141174f},
};
constexpr EarlyTap kHallRight[] = {
    {354, 0.79916f},    {1394, -0.240909f}, {1545, 0.894957f},  {2760, -0.120724f},
    {2835, 0.710723f},  {6387, 0.148243f},  {6659, 0.208488f},  {7816, -0.073174f},
    {8044, -0.103855f}, {8153, 0.367281f},  {8909, 0.102083f},  {9053, 0.106125f},
    {9576, 0.239366f},  {11510, 0.08257f},  {12175, 0.080283f}, {12491, 0.076169f},
    {12654, 0.070502f}, {14058, 0.207366f}, {17194, 0.079204f},
};

constexpr EarlySet kNoTaps{};
constexpr EarlySet kRoomTaps{kRoomLeft, kRoomRight};
constexpr EarlySet kHallTaps{kHallLeft, kHallRight};

// The last weight of each row is meant to be larger than its neighbours.
constexpr std::array<float, kReverbLongLines> kLeft = {
    0.95f,   -0.985f, -0.986f, 0.987f,  -0.987f, 0.988f, -0.96f, 0.98f,   -0.985f, 0.89f,   -0.99f,
    0.91f,   0.96f,   -0.96f,  -0.95f,  0.95f,   -0.98f, 0.98f,  0.978f,  0.987f,  -0.976f, -0.95f,
    0.95f,   -1.0f,   1.0f,    1.0f,    1.0f,    0.99f,  -0.99f, 1.0f,    -1.0f,   1.0f,    0.95f,
    -0.985f, -0.986f, 0.987f,  -0.987f, 0.988f,  -0.96f, 0.98f,  -0.985f, 0.89f,   -0.99f,  0.91f,
    0.96f,   -0.96f,  -0.95f,  0.95f,   -0.98f,  0.98f,  0.978f, 0.987f,  -0.976f, -0.95f,  0.95f,
    -1.0f,   1.0f,    1.0f,    1.0f,    0.99f,   -0.99f, 1.0f,   -1.0f,   -3.4f,
};
constexpr std::array<float, kReverbLongLines> kRight = {
    0.95f,   0.9667f, 0.977f, -0.98f, 0.976f,  -0.98f,  0.979f,  -0.95f,  -0.88f,  1.0f,    1.0f,
    1.0f,    -1.0f,   -1.0f,  -1.0f,  1.0f,    -0.975f, 0.9767f, -0.977f, 0.98f,   -0.976f, -0.98f,
    -0.799f, 0.95f,   -0.98f, 1.0f,   1.0f,    1.0f,    1.0f,    1.0f,    1.0f,    2.0f,    0.95f,
    0.9667f, 0.977f,  -0.98f, 0.976f, -0.98f,  0.979f,  -0.95f,  -0.88f,  1.0f,    1.0f,    1.0f,
    -1.0f,   -1.0f,   -1.0f,  1.0f,   -0.975f, 0.9767f, -0.977f, 0.98f,   -0.976f, -0.98f,  -0.799f,
    0.95f,   -0.98f,  1.0f,   1.0f,   1.0f,    1.0f,    1.0f,    1.0f,    1.0f,
};
constexpr std::array<float, kReverbLongLines / 2> kHalfLeft = {
    0.95f, -0.985f, -0.986f, 0.987f, -0.987f, 0.988f, -0.96f, 0.98f,  -0.985f, 0.89f,   -0.99f,
    0.91f, 0.96f,   -0.96f,  -0.95f, 0.95f,   -0.98f, 0.98f,  0.978f, 0.987f,  -0.976f, -0.95f,
    0.95f, -1.0f,   1.0f,    1.0f,   1.0f,    0.99f,  -0.99f, 1.0f,   -1.0f,   5.0f,
};
constexpr std::array<float, kReverbLongLines / 2> kHalfRight = {
    0.95f,   0.9667f, 0.977f, -0.98f, 0.976f, -0.98f,  0.979f,  -0.95f,  -0.88f, 1.0f,    1.0f,
    1.0f,    -1.0f,   -1.0f,  -1.0f,  1.0f,   -0.975f, 0.9767f, -0.977f, 0.98f,  -0.976f, -0.98f,
    -0.799f, 0.95f,   -0.98f, 1.0f,   1.0f,   1.0f,    1.0f,    1.0f,    1.0f,   8.0f,
};

// Odd lines first, from the last one down; even lines take the input upside down.
constexpr std::array<LineWeight, kReverbLongLines> parallelWeights()
{
    std::array<LineWeight, kReverbLongLines> weights{};
    std::size_t n = 0;
    for (const int last : {kReverbLongLines - 1, kReverbLongLines - 2}) {
        for (int line = last; line >= 0; line -= 2) {
            const auto i = static_cast<std::size_t>(line);
            weights[n++] = {line, line % 2 == 1 ? 1.0f : -1.0f, kLeft[i], kRight[i]};
        }
    }
    return weights;
}

constexpr std::array<LineWeight, kReverbLongLines / 2> halfWeights()
{
    std::array<LineWeight, kReverbLongLines / 2> weights{};
    std::size_t n = 0;
    for (int line = kReverbLongLines - 1; line >= 0; line -= 2) {
        const auto i = static_cast<std::size_t>(line / 2);
        weights[n++] = {line, i % 2 == 0 ? 1.0f : -1.0f, kHalfLeft[i], kHalfRight[i]};
    }
    return weights;
}

} // namespace

constexpr std::array<LineWeight, kReverbLongLines> kParallelWeights = parallelWeights();
constexpr std::array<LineWeight, kReverbLongLines / 2> kHalfWeights = halfWeights();

constexpr LineVector kMixedLeft = {
    0.65f,  -0.75f, -0.76f, 0.7f,  -0.77f, 0.8f,   -0.76f, 0.8f,
    -0.85f, 0.79f,  -0.9f,  0.81f, 0.76f,  -0.96f, -0.75f, 0.75f,
};
constexpr LineVector kMixedRight = {
    -0.45f, 0.767f, -0.77f, -0.8f, -0.76f, 0.8f, -0.79f, -0.8f,
    1.0f,   1.0f,   1.0f,   1.0f,  -1.0f,  1.0f, 1.0f,   -0.96f,
};

constexpr LineVector kLineTapLeft = {
    0.95f,   -0.985f, -0.986f, 0.987f, -0.987f, 0.988f, -0.96f, 0.98f,
    -0.985f, 0.89f,   -0.99f,  0.91f,  0.96f,   -0.96f, -0.95f, 0.95f,
};
constexpr LineVector kLineTapRight = {
    0.95f,  0.9667f, 0.977f, -0.98f, 0.976f, -0.98f, 0.979f, -0.95f,
    -0.88f, 1.0f,    1.0f,   1.0f,   -1.0f,  -1.0f,  -1.0f,  1.0f,
};

constexpr std::array<ReverbRow, kReverbTypeCount> kReverbTypes = {{
    {"Diffuse-1", ReverbNetwork::parallel, 9000.0, 0.5f, &kNoTaps, 0.0, 1.0, 1.0f},
    {"Diffuse-2", ReverbNetwork::mixed, 8000.0, 1.0f, &kNoTaps, 0.0, 1.0, 1.0f},
    {"Room", ReverbNetwork::half, 12000.0, 0.5f, &kRoomTaps, 0.0, 1.0, 0.5f},
    {"Hall", ReverbNetwork::parallel, 7000.0, 0.5f, &kHallTaps, 0.06, 0.6, 0.5f},
    {"Cathedral", ReverbNetwork::parallel, 4500.0, 0.5f, &kHallTaps, 0.09, 1.0, 1.0f},
}};

} // namespace tolm
