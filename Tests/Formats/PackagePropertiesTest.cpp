// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/ByteWriter.h"
#include "Standalone/Formats/Package/PackageBuilder.h"
#include "Standalone/Formats/Package/PropertyArrays.h"
#include "Tests/Formats/TestContent.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <map>

using namespace QVFormats;
using namespace QVTest;
namespace fs = std::filesystem;

namespace
{
/** Writes properties in both forms of tags; names become the package's first ones. */
class FTagWriter
{
public:
	explicit FTagWriter(bool bInComplete)
		: bComplete(bInComplete)
	{
	}

	void Name(std::string_view Text)
	{
		const auto Known = std::find(Names.begin(), Names.end(), Text);
		Out.I32(static_cast<std::int32_t>(Known - Names.begin()));
		Out.I32(0);
		if (Known == Names.end())
		{
			Names.emplace_back(Text);
		}
	}
	/** Parameters are names alone, as many as the type has. */
	void Tag(std::string_view Property, std::string_view Type, const std::vector<std::string>& Parameters,
		const std::vector<std::byte>& Value, std::uint8_t Flags = 0)
	{
		Name(Property);
		Name(Type);
		bComplete ? CompleteRest(Parameters, Value, Flags) : PlainRest(Type, Parameters, Value, Flags);
		Out.Append(Value);
	}
	/** What Write adds, as bytes of their own. */
	template<class TWrite>
	std::vector<std::byte> Nested(TWrite Write)
	{
		FByteWriter Outer;
		std::swap(Outer, Out);
		Write();
		std::swap(Outer, Out);
		return Outer.Release();
	}

	FByteWriter Out;
	std::vector<std::string> Names = {"None"};

private:
	void CompleteRest(
		const std::vector<std::string>& Parameters, const std::vector<std::byte>& Value, std::uint8_t Flags)
	{
		// of an array of structs the second is the struct: a parameter of the first
		const bool bNested = Parameters.size() == 2 && Parameters[0] == "StructProperty";
		Out.I32(bNested ? 1 : static_cast<std::int32_t>(Parameters.size()));
		for (std::size_t Index = 0; Index < Parameters.size(); ++Index)
		{
			Name(Parameters[Index]);
			Out.I32(bNested && Index == 0 ? 1 : 0);
		}
		Out.I32(static_cast<std::int32_t>(Value.size()));
		Out.U8(Flags);
	}
	void PlainRest(std::string_view Type, const std::vector<std::string>& Parameters,
		const std::vector<std::byte>& Value, std::uint8_t Flags)
	{
		Out.I32(static_cast<std::int32_t>(Value.size()));
		Out.I32(0);
		if (Type == "BoolProperty")
		{
			Out.U8((Flags & 0x10) != 0 ? 1 : 0);
		}
		if (!Parameters.empty())
		{
			Name(Parameters[0]);
		}
		Out.Append(std::vector<std::byte>(Type == "StructProperty" ? 16 : 0));
		Out.U8(0);
	}

	bool bComplete;
};

template<class T>
std::vector<std::byte> Raw(const T& Value)
{
	const auto Bytes = std::as_bytes(std::span(&Value, 1));
	return {Bytes.begin(), Bytes.end()};
}

/** One property of each kind that is read. */
void WriteAll(FTagWriter& Tags, bool bComplete)
{
	Tags.Tag("bOn", "BoolProperty", {}, {}, 0x10);
	Tags.Tag("Small", "Int8Property", {}, Raw<std::int8_t>(-5));
	Tags.Tag("Large", "UInt64Property", {}, Raw<std::uint64_t>(0xFFFFFFFFFFFFFFFF));
	Tags.Tag("Count", "IntProperty", {}, Raw<std::int32_t>(-7));
	Tags.Tag("Height", "FloatProperty", {}, Raw(1.5f));
	Tags.Tag("Width", "DoubleProperty", {}, Raw(2.25));
	Tags.Tag("Kind", "EnumProperty", {"EKind"}, Tags.Nested([&] { Tags.Name("EKind::Soft"); }));
	Tags.Tag("Level", "ByteProperty", {"None"}, Raw<std::uint8_t>(200));
	Tags.Tag("Label", "StrProperty", {}, Tags.Nested([&] { Tags.Out.String("Tür"); }));
	Tags.Tag("Self", "ObjectProperty", {}, Raw<std::int32_t>(1));
	Tags.Tag("Far", "ObjectProperty", {}, Raw<std::int32_t>(99));
	Tags.Tag("Mesh", "SoftObjectProperty", {}, Raw<std::int32_t>(0));
	Tags.Tag("Place", "StructProperty", {"Vector"}, Raw(std::array{1.0, 2.0, 3.0}), 0x08);
	Tags.Tag("Id", "StructProperty", {"Guid"}, Raw(FPackageGuid{{1, 2, 3, 4}}), 0x08);
	const auto Inside = [&]
	{
		Tags.Tag("Count", "IntProperty", {}, Raw<std::int32_t>(8));
		Tags.Name("None");
	};
	Tags.Tag("Inner", "StructProperty", {"Pair"}, Tags.Nested(Inside));
	Tags.Tag("Numbers", "ArrayProperty", {"IntProperty"}, Raw(std::array{2, 10, 20}));
	Tags.Tag("Words", "ArrayProperty", {"NameProperty"},
		Tags.Nested([&] { Tags.Out.I32(2), Tags.Name("Pair"), Tags.Name("Id"); }));
	Tags.Tag("Lists", "ArrayProperty", {"StructProperty", "Pair"},
		Tags.Nested(
			[&]
			{
				Tags.Out.I32(2);
				if (!bComplete)
				{
					Tags.Tag("Lists", "StructProperty", {"Pair"}, {});
				}
				Inside();
				Inside();
			}));
	Tags.Name("None");
}

/** The file version stands behind tag and three other numbers. */
void SetVersion(std::vector<std::byte>& File, std::int32_t Version)
{
	std::memcpy(File.data() + 16, &Version, sizeof(Version));
}

struct FSample
{
	std::vector<std::byte> File;
	std::vector<std::byte> Data;

	explicit FSample(bool bComplete)
	{
		FTagWriter Tags(bComplete);
		Tags.Out.U8(0); // control byte
		WriteAll(Tags, bComplete);
		FPackageSpec Spec;
		Spec.PackageName = "/Game/Sample";
		FExportSpec Export;
		Export.ObjectName = "Sample";
		Export.Data = Tags.Out.Release();
		Export.ScriptEnd = static_cast<std::int64_t>(Export.Data.size());
		Data = Export.Data;
		Spec.DataNames = Tags.Names;
		Spec.Exports = {Export};
		Spec.SoftPaths = {{"/Game/Rock", "Rock", "Part"}};
		File = BuildPackage(Spec);
		if (!bComplete)
		{
			SetVersion(File, 1010); // the same header; tags have a byte less than in 1011
		}
	}
};

std::optional<FPropertyTag> FindIn(const FPackageHeader& Header, FBytes Data, std::string_view Name)
{
	return FindProperty(Header, Header.Exports[0], Data, Name);
}

void ExpectValues(const FPackageHeader& Header, FBytes Data)
{
	const auto Value = [&](std::string_view Name)
	{
		const std::optional<FPropertyTag> Tag = FindIn(Header, Data, Name);
		EXPECT_TRUE(Tag) << Name;
		return Tag ? Tag->Value : FPropertyValue();
	};
	EXPECT_EQ(ToBool(Value("bon")), true) << "names have no case";
	EXPECT_EQ(ToInteger(Value("Small")), -5);
	EXPECT_EQ(ToInteger(Value("Large")), std::nullopt) << "is above what fits";
	EXPECT_EQ(ToInteger(Value("Count")), -7);
	EXPECT_EQ(ToInteger(Value("Level")), 200);
	EXPECT_EQ(ToInteger(Value("Height")), std::nullopt) << "is no integer";
	EXPECT_EQ(ToReal(Value("Height")), 1.5);
	EXPECT_EQ(ToReal(Value("Width")), 2.25);
	EXPECT_EQ(Header.Names.Text(ToName(Header, Value("Kind")).value()), "EKind::Soft");
	EXPECT_EQ(ToStringView(Value("Label"))->ToUtf8(), "Tür");
	EXPECT_EQ(ToObject(Header, Value("Self")), FPackageIndex::Export(0));
	EXPECT_EQ(ToObject(Header, Value("Far")), std::nullopt) << "is outside the tables";
	EXPECT_EQ(ToSoftPath(Header, Value("Mesh")), (FSoftObjectPath{"/Game/Rock", "Rock", "Part"}));
	EXPECT_EQ(ToVector(Header, Value("Place")), (std::array{1.0, 2.0, 3.0}));
	EXPECT_EQ(ToRotator(Header, Value("Place")), std::nullopt) << "is a vector";
	EXPECT_EQ(ToGuid(Header, Value("Id")), (FPackageGuid{{1, 2, 3, 4}}));
	EXPECT_FALSE(OpenStruct(Header, Value("Id"))) << "has no tags";
	const std::optional<FPropertyTag> Inner = FindProperty(Header, *OpenStruct(Header, Value("Inner")), "Count");
	EXPECT_EQ(ToInteger(Inner->Value), 8);
	EXPECT_EQ(FindIn(Header, Data, "Missing").has_value(), false);

	std::string Told;
	for (const char* Name : {"Numbers", "Words", "Lists"})
	{
		std::optional<FPropertyArrayReader> Array = OpenArray(Header, Value(Name));
		ASSERT_TRUE(Array) << Name;
		for (FPropertyValue Element; Array->Next(Element);)
		{
			const std::optional<FNameRef> Word = ToName(Header, Element);
			std::optional<FPropertyReader> Struct = OpenStruct(Header, Element);
			const auto Field = Struct ? FindProperty(Header, *Struct, "Count") : std::nullopt;
			Told += Word ? Header.Names.Text(*Word) : std::to_string(*ToInteger(Field ? Field->Value : Element));
			Told += " ";
		}
		EXPECT_TRUE(Array->IsAtEnd()) << Name;
	}
	EXPECT_EQ(Told, "10 20 Pair Id 8 8 ");
}

struct FWalk
{
	std::size_t Tags = 0;
	std::size_t Structs = 0;
	std::size_t Arrays = 0;
	/** Structs and arrays whose content does not end where their value does. */
	std::vector<std::string> Uneven;
};

void WalkValue(const FPackageHeader& Header, const FPropertyValue& Value, FWalk& Walk);

/** True when the end mark is the last that there is. */
bool WalkTags(const FPackageHeader& Header, FPropertyReader& Reader, FWalk& Walk)
{
	for (FPropertyTag Tag; Reader.Next(Tag);)
	{
		++Walk.Tags;
		WalkValue(Header, Tag.Value, Walk);
	}
	return Reader.IsAtEnd();
}

/** Also calls every getter: none may look outside the value. */
void WalkValue(const FPackageHeader& Header, const FPropertyValue& Value, FWalk& Walk)
{
	ToBool(Value), ToInteger(Value), ToReal(Value), ToName(Header, Value), ToStringView(Value), ToObject(Header, Value);
	ToSoftPath(Header, Value), ToVector(Header, Value), ToRotator(Header, Value), ToQuat(Header, Value);
	ToLinearColor(Header, Value), ToGuid(Header, Value);
	if (std::optional<FPropertyReader> Struct = OpenStruct(Header, Value))
	{
		++Walk.Structs;
		if (!WalkTags(Header, *Struct, Walk) || Struct->Position() != Value.Bytes.size())
		{
			Walk.Uneven.push_back(Header.Names.Text(StructNameOf(Header, Value).value_or(FNameRef())));
		}
	}
	if (std::optional<FPropertyArrayReader> Array = OpenArray(Header, Value))
	{
		++Walk.Arrays;
		for (FPropertyValue Element; Array->Next(Element);)
		{
			WalkValue(Header, Element, Walk);
		}
		const std::optional<FPropertyType> Struct = Array->ElementType().Parameter(Header.Names, 0);
		if (!Array->IsAtEnd())
		{
			Walk.Uneven.push_back("array of " + Header.Names.Text(Array->ElementType().Name) + " " +
								  (Struct ? Header.Names.Text(Struct->Name) : ""));
		}
	}
}

void ReadWildly(FBytes File)
{
	const TResult<FPackageHeader> Header = ReadPackageHeader(File);
	for (std::size_t Index = 0; Header && Index < Header->Exports.size(); ++Index)
	{
		const TResult<FBytes> Data = FindExportData(Header->Exports[Index], File);
		TResult<FPropertyReader> Reader =
			Data ? OpenProperties(*Header, Header->Exports[Index], *Data) : TResult<FPropertyReader>(Data.Error());
		FWalk Walk;
		if (Reader)
		{
			WalkTags(*Header, *Reader, Walk);
		}
	}
}
} // namespace

TEST(PackageProperties, EveryKindOfValueIsReadInBothForms)
{
	for (const bool bComplete : {true, false})
	{
		SCOPED_TRACE(bComplete);
		FSample Sample(bComplete);
		const TResult<FPackageHeader> Header = ReadPackageHeader(Sample.File);
		ASSERT_TRUE(Header) << Header.Error().Message;
		const FBytes Data = bComplete ? FBytes(Sample.Data) : FBytes(Sample.Data).subspan(1);
		TResult<FBytes> Found = FindExportData(Header->Exports[0], Sample.File);
		ASSERT_TRUE(Found) << Found.Error().Message;
		EXPECT_TRUE(std::equal(Found->begin(), Found->end(), Sample.Data.begin(), Sample.Data.end()));
		FPackageExport Export = Header->Exports[0];
		Export.ScriptEnd = static_cast<std::int64_t>(Data.size());
		FPackageHeader Mended = *Header;
		Mended.Exports[0] = Export;
		ExpectValues(Mended, Data);
		TResult<FPropertyReader> Reader = OpenProperties(Mended, Export, Data);
		ASSERT_TRUE(Reader);
		FWalk Walk;
		EXPECT_TRUE(WalkTags(Mended, *Reader, Walk));
		EXPECT_EQ(Walk.Tags, 21u);
		EXPECT_EQ(Walk.Uneven, std::vector<std::string>());
		EXPECT_EQ(Reader->Position(), Data.size());
	}
}

TEST(PackageProperties, WhatCannotBeReadIsRefused)
{
	FSample Sample(true);
	TResult<FPackageHeader> Header = ReadPackageHeader(Sample.File);
	ASSERT_TRUE(Header);
	FPackageExport Export = Header->Exports[0];
	Export.ScriptEnd += 1;
	EXPECT_EQ(OpenProperties(*Header, Export, Sample.Data).Error().Message,
		"is damaged: the properties of an export lie outside its data");
	Export.ScriptEnd = Export.ScriptStart = 0;
	EXPECT_TRUE(OpenProperties(*Header, Export, Sample.Data)->IsAtEnd()) << "has none";
	Export.SerialOffset = static_cast<std::int64_t>(Sample.File.size());
	EXPECT_TRUE(
		FindExportData(Export, Sample.File).Error().Message.starts_with("is cut short or damaged: an export's"));
	Header->Summary.Flags |= static_cast<std::uint32_t>(EPackageFlags::UnversionedProperties);
	EXPECT_EQ(OpenProperties(*Header, Header->Exports[0], Sample.Data).Error().Message,
		"has unversioned properties (UnversionedProperties), as cooked packages have: they cannot be read without the "
		"classes that they are of");
}

TEST(PackageProperties, StructsAreOpenedToABoundedDepth)
{
	FTagWriter Tags(true);
	std::vector<std::byte> Value = Tags.Nested([&] { Tags.Name("None"); });
	for (int Depth = 0; Depth < 2 * DeepestProperty; ++Depth)
	{
		Value = Tags.Nested(
			[&]
			{
				Tags.Tag("Inner", "StructProperty", {"Pair"}, Value);
				Tags.Name("None");
			});
	}
	FPackageSpec Spec;
	Spec.PackageName = "/Game/Deep";
	Spec.DataNames = Tags.Names;
	const std::vector<std::byte> File = BuildPackage(Spec);
	const TResult<FPackageHeader> Header = ReadPackageHeader(File);
	ASSERT_TRUE(Header) << Header.Error().Message;
	FPropertyReader Reader(*Header, Value);
	FWalk Walk;
	EXPECT_TRUE(WalkTags(*Header, Reader, Walk));
	EXPECT_EQ(Walk.Structs, static_cast<std::size_t>(DeepestProperty));
}

TEST(PackageProperties, DamageIsNeverFollowed)
{
	for (const bool bComplete : {true, false})
	{
		const FSample Sample(bComplete);
		ForEachTruncation(Sample.File, ReadWildly);
		ForEachWildField(Sample.File, ReadWildly);
	}
}

TEST(PackageProperties, OfEveryRealExportEndWhereTheFileSays)
{
	if (ContentFolder().empty())
	{
		GTEST_SKIP() << "QVMAP_TEST_CONTENT is not set";
	}
	std::size_t Packages = 0;
	std::size_t ExactEnds = 0;
	std::size_t OlderEnds = 0;
	FWalk Walk;
	for (const fs::directory_entry& Each : fs::recursive_directory_iterator(ContentFolder()))
	{
		const fs::path Extension = Each.path().extension();
		if (Extension != ".uasset" && Extension != ".umap")
		{
			continue;
		}
		const std::string Text = ReadText(Each.path());
		const FBytes File = std::as_bytes(std::span(Text));
		const TResult<FPackageHeader> Header = ReadPackageHeader(File);
		if (!Header || Header->Summary.Has(EPackageFlags::FilterEditorOnly))
		{
			continue;
		}
		++Packages;
		const bool bOffsets = Header->Summary.IsAtLeast(EUE5Version::ScriptOffsets);
		for (const FPackageExport& Export : Header->Exports)
		{
			const TResult<FBytes> Data = FindExportData(Export, File);
			ASSERT_TRUE(Data) << Each.path() << " " << Data.Error().Message;
			TResult<FPropertyReader> Reader = OpenProperties(*Header, Export, *Data);
			ASSERT_TRUE(Reader) << Each.path() << " " << Reader.Error().Message;
			const std::string Named =
				Each.path().string() + ": " + Header->ClassPathOf(Export) + " " + Header->Names.Text(Export.ObjectName);
			EXPECT_TRUE(WalkTags(*Header, *Reader, Walk)) << Named;
			if (bOffsets)
			{
				EXPECT_EQ(Reader->Position(), static_cast<std::size_t>(Export.ScriptEnd - Export.ScriptStart)) << Named;
			}
			++(bOffsets ? ExactEnds : OlderEnds);
		}
	}
	std::map<std::string, int> Uneven;
	for (const std::string& Each : Walk.Uneven)
	{
		++Uneven[Each];
	}
	for (const auto& [Name, Count] : Uneven)
	{
		std::printf("not opened to its end: %s, %d times\n", Name.c_str(), Count);
	}
	std::printf("%zu packages: %zu exports end exactly, %zu of older layouts at their end mark; %zu tags, %zu structs, "
				"%zu arrays\n",
		Packages, ExactEnds, OlderEnds, Walk.Tags, Walk.Structs, Walk.Arrays);
	EXPECT_GT(ExactEnds, 1000u);
	EXPECT_GT(OlderEnds, 1000u);
	EXPECT_LT(Walk.Uneven.size() * 100, Walk.Structs + Walk.Arrays) << "structs in forms of their own are few";
}
