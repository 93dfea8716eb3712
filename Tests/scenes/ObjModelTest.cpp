// SPDX-License-Identifier: Apache-2.0
#include "ObjModel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace {

using scenes::Model;

std::string readError(const std::string& text)
{
    std::istringstream stream(text);
    Model model;
    std::string error;
    EXPECT_FALSE(scenes::readObj(stream, "m.obj", model, error));
    EXPECT_TRUE(model.vertices.empty());
    return error;
}

Model readGood(const std::string& text)
{
    std::istringstream stream(text);
    Model model;
    std::string error;
    EXPECT_TRUE(scenes::readObj(stream, "m.obj", model, error)) << error;
    return model;
}

const std::string Triangle = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";

TEST(ReadObj, TriangleGetsItsFaceNormal)
{
    Model model = readGood(Triangle + "f 1 2 3\n");
    ASSERT_EQ(model.indices.size(), 3u);
    for (const auto& v : model.vertices) EXPECT_EQ(v.normal, (std::array<float, 3>{0, 0, 1}));
}

TEST(ReadObj, PolygonsBecomeFans)
{
    Model model = readGood(Triangle + "v 1 1 0\nv 2 2 0\nf 1 2 5 4 3\n");
    EXPECT_EQ(model.indices.size(), 9u);
}

TEST(ReadObj, NegativeIndicesCountFromTheEnd)
{
    Model model = readGood(Triangle + "f -3 -2 -1\n");
    EXPECT_EQ(model.vertices[model.indices[1]].position, (std::array<float, 3>{1, 0, 0}));
}

TEST(ReadObj, GivenNormalsAndTexcoordsAreKept)
{
    Model model = readGood(Triangle + "vt 0.25 0.75\nvn 0 0 -2\nf 1/1/1 2/1/1 3//1\n");
    EXPECT_EQ(model.vertices[model.indices[0]].texcoord, (std::array<float, 2>{0.25f, 0.75f}));
    EXPECT_EQ(model.vertices[model.indices[0]].normal, (std::array<float, 3>{0, 0, -1}));
}

TEST(ReadObj, FacesThatMeetAtASharpEdgeStayFlat)
{
    Model model = readGood("v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 0 1\nf 1 2 3\nf 1 4 2\n");
    EXPECT_EQ(model.vertices[model.indices[0]].normal, (std::array<float, 3>{0, 0, 1}));
    EXPECT_EQ(model.vertices[model.indices[3]].normal, (std::array<float, 3>{0, 1, 0}));
}

TEST(ReadObj, RepeatedPositionsJoinSmoothly)
{
    Model model = readGood("v 0 0 0\nv 1 0 0\nv 0 1 0.1\nv 0 0 0\nv 0 -1 0.1\nv 1 0 0\nf 1 2 3\nf 4 5 6\n");
    EXPECT_EQ(model.vertices[model.indices[0]].normal, model.vertices[model.indices[3]].normal);
}

TEST(ReadObj, CornersThatAgreeAreOneVertex)
{
    EXPECT_EQ(readGood(Triangle + "v 1 1 0\nvt 0 0\nf 1/1 2/1 3/1\nf 3/1 2/1 4/1\n").vertices.size(), 4u);
}

TEST(ReadObj, CommentsAndOtherStatementsArePassedOver)
{
    EXPECT_EQ(readGood("# teapot\nmtllib x.mtl\no a\n" + Triangle + "s 1\r\nusemtl m\r\nf 1 2 3 # last\r\n").indices.size(), 3u);
}

TEST(ReadObj, CornerBeyondTheVerticesNamesItsLine)
{
    EXPECT_EQ(readError(Triangle + "f 1 2 4\n"), "m.obj:4: a face names the corner '4', which does not exist");
}

TEST(ReadObj, IndexZeroIsRefused) { EXPECT_EQ(readError(Triangle + "f 0 1 2\n"), "m.obj:4: a face names the corner '0', which does not exist"); }

TEST(ReadObj, ShortFaceIsRefused) { EXPECT_EQ(readError(Triangle + "f 1 2\n"), "m.obj:4: a face has fewer than three corners"); }

TEST(ReadObj, BrokenNumberIsRefused) { EXPECT_EQ(readError("v 0 zero 0\n"), "m.obj:1: 'v' needs three numbers"); }

TEST(ReadObj, NotANumberIsRefused) { EXPECT_EQ(readError("v 0 nan 0\n"), "m.obj:1: 'v' needs three numbers"); }

TEST(ReadObj, BytesOfAnotherKindOfFileAreNoModel)
{
    EXPECT_EQ(readError(std::string("\x89PNG\r\n\x1a\n\0\0", 10)), "m.obj: this is no Wavefront OBJ model: it has no faces");
}

TEST(ReadObj, DegenerateFaceGetsAUnitNormal)
{
    for (const auto& v : readGood("v 0 0 0\nv 0 0 0\nv 0 0 0\nf 1 2 3\n").vertices)
        EXPECT_FLOAT_EQ(std::hypot(v.normal[0], v.normal[1], v.normal[2]), 1);
}

TEST(ReadObj, SeamTrianglesDoNotRunBackwards)
{
    Model model = readGood("v 0.1 0 -1\nv -0.1 0 -1\nv 0 1 -1\nv 0 0 1\nv 0.1 0 1\nv 0 1 1\nf 1 2 3\nf 4 5 6\n");
    for (int i = 1; i < 3; ++i)
        EXPECT_LT(std::abs(model.vertices[model.indices[i]].texcoord[0] - model.vertices[model.indices[0]].texcoord[0]), 0.5f);
}

TEST(ReadObjFile, MissingFileIsOneSentence)
{
    Model model;
    std::string error;
    EXPECT_FALSE(scenes::readObjFile("/nonexistent/m.obj", model, error));
    EXPECT_EQ(error, "/nonexistent/m.obj: the file cannot be opened");
}

TEST(ReadObjFile, FolderIsRefused)
{
    Model model;
    std::string error;
    EXPECT_FALSE(scenes::readObjFile("/", model, error));
    EXPECT_EQ(error, "/: this is a folder, not a model");
}

TEST(ReadObjFile, TeapotHasItsTriangles)
{
    Model model;
    std::string error;
    ASSERT_TRUE(scenes::readObjFile(ZAL_SOURCE_DIR "/Examples/models/teapot.obj", model, error)) << error;
    EXPECT_EQ(model.indices.size(), 992u * 3);
}

} // namespace
