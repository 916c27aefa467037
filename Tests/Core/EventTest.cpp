// SPDX-License-Identifier: MIT
#include "Core/QVEvent.h"

#include <gtest/gtest.h>
#include <string>

TEST(Event, ReachesWhoHoldsASubscriptionInTheirOrder)
{
	TQVEvent<std::string> Event;
	std::string Heard;
	FQVSubscription First = Event.Subscribe([&](const std::string& What) { Heard += "1" + What; });
	FQVSubscription Second = Event.Subscribe([&](const std::string& What) { Heard += "2" + What; });
	Event.Broadcast("a");
	First.reset();
	Event.Broadcast("b");
	EXPECT_EQ(Heard, "1a2a2b");
}

TEST(Event, HandlersMayComeAndGoWhileItIsTold)
{
	std::string Heard;
	FQVSubscription Own;
	FQVSubscription Other;
	FQVSubscription New;
	{
		TQVEvent<> Event;
		Own = Event.Subscribe(
			[&]
			{
				Heard += "own";
				Own.reset();
				Other.reset();
				New = Event.Subscribe([&] { Heard += " new"; });
			});
		Other = Event.Subscribe([&] { Heard += " other"; });
		Event.Broadcast();
		EXPECT_EQ(Heard, "own");
		Event.Broadcast();
		EXPECT_EQ(Heard, "own new");
	}
	New.reset(); // the event is gone already
}
