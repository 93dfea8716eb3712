// SPDX-License-Identifier: Apache-2.0
#include "softmetal/shader/widen/Programs.h"

#include <gtest/gtest.h>

namespace widentest {
namespace {

/// Ends a program: stores the named integers, which must be on hand in the last block.
std::string storing(std::initializer_list<const char*> names)
{
    std::string text;
    uint32_t component = 0;
    for (const char* name : names) {
        std::string n = std::to_string(component++);
        text += "  %bits" + n + " = bitcast i32 " + name + " to float\n  call void @softmetal_store_output(i32 " + n + ", float %bits" + n + ")\n";
    }
    return text + "  ret void\n";
}

const std::string LaneId = "  %id = call i32 @softmetal_vertex_id()\n";

TEST(ControlFlow, StraightLineGivesEachLaneItsOwnResult)
{
    expectSameAsScalar(program(LaneId + "  %a = mul i32 %id, 7\n  %b = call i32 @softmetal_attribute(i32 2, i32 1)\n  %c = xor i32 %a, %b\n" +
                               storing({"%c", "%a", "%b"})));
}

TEST(ControlFlow, IfAndElseAreTakenLaneByLane)
{
    expectSameAsScalar(program(LaneId + R"(
  %even = trunc i32 %id to i1
  br i1 %even, label %then, label %else
then:
  %d = udiv i32 1000, %id
  br label %join
else:
  %m = mul i32 %id, %id
  br label %join
join:
  %r = phi i32 [ %d, %then ], [ %m, %else ]
)" + storing({"%r"})));
}

TEST(ControlFlow, InnerBranchesSeeOnlyTheLanesOfTheOuterOnes)
{
    expectSameAsScalar(program(LaneId + R"(
  %a = icmp ugt i32 %id, 3
  br i1 %a, label %outer, label %end
outer:
  %b = icmp ult i32 %id, 11
  br i1 %b, label %inner, label %other
inner:
  %x = udiv i32 5000, %id
  br label %outerEnd
other:
  %y = urem i32 5000, %id
  br label %outerEnd
outerEnd:
  %xy = phi i32 [ %x, %inner ], [ %y, %other ]
  %z = add i32 %xy, 1
  br label %end
end:
  %r = phi i32 [ 99, %0 ], [ %z, %outerEnd ]
)" + storing({"%r", "%id"})));
}

TEST(ControlFlow, EachLaneLeavesALoopInItsOwnTime)
{
    expectSameAsScalar(program(LaneId + R"(
  br label %loop
loop:
  %i = phi i32 [ 0, %0 ], [ %next, %loop ]
  %sum = phi i32 [ 3, %0 ], [ %more, %loop ]
  %scaled = mul i32 %sum, 5
  %more = add i32 %scaled, %i
  %next = add i32 %i, 1
  %again = icmp ult i32 %i, %id
  br i1 %again, label %loop, label %end
end:
)" + storing({"%more", "%i", "%sum"})));
}

TEST(ControlFlow, ResultsOfTheRoundBeforeAreReadWhenALoopIsLeftAtItsEnd)
{
    // The latch goes back and leaves at once: the old value of the variable must survive the step to the new one.
    expectSameAsScalar(program(LaneId + R"(
  br label %head
head:
  %i = phi i32 [ 0, %0 ], [ %next, %latch ]
  %old = phi i32 [ 1, %0 ], [ %new, %latch ]
  %new = mul i32 %old, 3
  %next = add i32 %i, 1
  %odd = trunc i32 %i to i1
  br i1 %odd, label %side, label %latch
side:
  %memory = call ptr @softmetal_buffer(i32 1)
  %place = getelementptr i32, ptr %memory, i32 %id
  store i32 %i, ptr %place
  br label %latch
latch:
  %again = icmp ult i32 %next, %id
  br i1 %again, label %head, label %end
end:
)" + storing({"%old", "%i"})));
}

TEST(ControlFlow, BreakAndContinueAffectTheirLanesOnly)
{
    expectSameAsScalar(program(LaneId + R"(
  br label %head
head:
  %i = phi i32 [ 0, %0 ], [ %next, %latch ]
  %sum = phi i32 [ 0, %0 ], [ %kept, %latch ]
  %next = add i32 %i, 1
  %stop = icmp eq i32 %i, 12
  br i1 %stop, label %end, label %body
body:
  %square = mul i32 %i, %i
  %break = icmp ugt i32 %square, %id
  br i1 %break, label %leave, label %goOn
leave:
  %marked = add i32 %sum, 1000
  br label %end
goOn:
  %mix = xor i32 %i, %id
  %skip = trunc i32 %mix to i1
  br i1 %skip, label %latch, label %work
work:
  %more = add i32 %sum, %i
  br label %latch
latch:
  %kept = phi i32 [ %sum, %goOn ], [ %more, %work ]
  br label %head
end:
  %r = phi i32 [ %sum, %head ], [ %marked, %leave ]
)" + storing({"%r", "%i"})));
}

TEST(ControlFlow, LoopsInsideLoopsStartAfreshEachRound)
{
    expectSameAsScalar(program(LaneId + R"(
  br label %outer
outer:
  %i = phi i32 [ 0, %0 ], [ %i1, %outerLatch ]
  %s = phi i32 [ 0, %0 ], [ %t1, %outerLatch ]
  br label %inner
inner:
  %j = phi i32 [ 0, %outer ], [ %j1, %inner ]
  %t = phi i32 [ %s, %outer ], [ %t1, %inner ]
  %p = mul i32 %i, 16
  %q = add i32 %p, %j
  %t1 = xor i32 %t, %q
  %j1 = add i32 %j, 1
  %limit = and i32 %id, 3
  %more = icmp ule i32 %j1, %limit
  br i1 %more, label %inner, label %outerLatch
outerLatch:
  %i1 = add i32 %i, 1
  %bound = lshr i32 %id, 1
  %again = icmp ule i32 %i1, %bound
  br i1 %again, label %outer, label %end
end:
)" + storing({"%t1", "%i1", "%j1"})));
}

TEST(ControlFlow, SwitchesTakeEveryCase)
{
    expectSameAsScalar(program(LaneId + R"(
  %k = and i32 %id, 7
  switch i32 %k, label %other [ i32 0, label %zero
                                i32 3, label %three
                                i32 5, label %five ]
zero:
  br label %end
three:
  %a = mul i32 %id, 3
  br label %five
five:
  %f = phi i32 [ %a, %three ], [ 55, %0 ]
  %b = add i32 %f, %id
  br label %end
other:
  %c = sub i32 0, %id
  br label %end
end:
  %r = phi i32 [ 1, %zero ], [ %b, %five ], [ %c, %other ]
)" + storing({"%r"})));
}

TEST(ControlFlow, UniformBranchesAndLoopsStayWhatTheyAre)
{
    expectSameAsScalar(program(LaneId + R"(
  %base = call i32 @softmetal_base_vertex()
  %c = icmp eq i32 %base, 5
  br i1 %c, label %then, label %else
then:
  %x = mul i32 %base, %base
  br label %loop
else:
  %y = udiv i32 7, 0
  br label %loop
loop:
  %u = phi i32 [ %x, %then ], [ %y, %else ], [ %u1, %loop ]
  %d = phi i32 [ %id, %then ], [ 0, %else ], [ %d1, %loop ]
  %n = phi i32 [ 0, %then ], [ 0, %else ], [ %n1, %loop ]
  %u1 = add i32 %u, 3
  %d1 = mul i32 %d, %u
  %n1 = add i32 %n, 1
  %again = icmp ult i32 %n1, %base
  br i1 %again, label %loop, label %end
end:
)" + storing({"%u1", "%d1", "%n1"})));
}

TEST(ControlFlow, UniformValuesOfALoopThatLanesLeaveAtDifferentTimesAreTheirOwnAfterIt)
{
    expectSameAsScalar(program(LaneId + R"(
  br label %loop
loop:
  %i = phi i32 [ 0, %0 ], [ %next, %loop ]
  %sq = mul i32 %i, %i
  %next = add i32 %i, 1
  %again = icmp ult i32 %i, %id
  br i1 %again, label %loop, label %end
end:
  %after = add i32 %sq, %i
)" + storing({"%after", "%sq"})));
}

TEST(ControlFlow, UniformBranchInsideADivergentOneRunsForItsLanesOnly)
{
    expectSameAsScalar(program(LaneId + R"(
  %base = call i32 @softmetal_base_vertex()
  %low = icmp ult i32 %id, 6
  br i1 %low, label %inside, label %end
inside:
  %c = icmp ugt i32 %base, 4
  br i1 %c, label %yes, label %no
yes:
  %a = add i32 %base, 100
  br label %insideEnd
no:
  br label %insideEnd
insideEnd:
  %u = phi i32 [ %a, %yes ], [ 4, %no ]
  %v = add i32 %u, %id
  br label %end
end:
  %r = phi i32 [ 0, %0 ], [ %v, %insideEnd ]
)" + storing({"%r"})));
}

TEST(ControlFlow, EarlyReturnLeavesTheOtherLanesRunning)
{
    // Outputs are stored in two places: what the first lanes stored must not be overwritten by the others.
    expectSameAsScalar(program(LaneId + R"(
  %early = icmp ult i32 %id, 5
  br i1 %early, label %out, label %rest
out:
  call void @softmetal_store_output(i32 0, float 1.0)
  ret void
rest:
  %bits = bitcast i32 %id to float
  call void @softmetal_store_output(i32 0, float %bits)
  ret void
)"));
}

TEST(ControlFlow, LoopsWithTwoEntriesAreHandled)
{
    expectSameAsScalar(program(LaneId + R"(
  %first = trunc i32 %id to i1
  br i1 %first, label %a, label %b
a:
  %x = phi i32 [ %id, %0 ], [ %y1, %b ]
  %x1 = add i32 %x, 3
  %da = icmp ugt i32 %x1, 40
  br i1 %da, label %end, label %b
b:
  %y = phi i32 [ 2, %0 ], [ %x1, %a ]
  %y1 = mul i32 %y, 2
  %db = icmp ugt i32 %y1, 50
  br i1 %db, label %end, label %a
end:
  %r = phi i32 [ %x1, %a ], [ %y1, %b ]
)" + storing({"%r"})));
}

TEST(ControlFlow, IdleLanesOfABatchAreLeftAlone)
{
    expectSameAsScalar(program(LaneId + R"(
  br label %loop
loop:
  %i = phi i32 [ 0, %0 ], [ %next, %loop ]
  %next = add i32 %i, 1
  %again = icmp ult i32 %i, %id
  br i1 %again, label %loop, label %end
end:
)" + storing({"%i"})), Stage::Vertex, 2, 0x0ee7);
}

TEST(ControlFlow, AVariableSetOnOneWayOnlyIsTheSameAtEveryWidth)
{
    std::string text = program(LaneId + R"(
  %odd = trunc i32 %id to i1
  br i1 %odd, label %set, label %join
set:
  br label %join
join:
  %r = phi i32 [ undef, %0 ], [ 7, %set ]
)" + storing({"%r"}));
    World four, sixteen;
    Results narrow = runWide(text, Stage::Vertex, 4, four), broad = runWide(text, Stage::Vertex, 16, sixteen);
    EXPECT_EQ(narrow.words[0], broad.words[0]);
    EXPECT_EQ(broad.words[0][1], 7u);
}

} // namespace
} // namespace widentest
