// SPDX-License-Identifier: MIT
#include "Standalone/Engine/NativeClasses.h"

#include "Core/QVString.h"

#include <algorithm>

namespace QVStandalone
{
namespace
{
struct FNativeClass
{
	std::string_view Path;
	std::string_view Parent;
};

/** Sorted without case by path. */
constexpr FNativeClass Classes[] = {
	{"/Script/AIModule.AIController", "/Script/Engine.Controller"},
	{"/Script/ChaosVehicles.WheeledVehiclePawn", "/Script/Engine.Pawn"},
	{"/Script/CinematicCamera.CineCameraActor", "/Script/Engine.CameraActor"},
	{"/Script/CoreUObject.Object", ""},
	{"/Script/Engine.Actor", "/Script/CoreUObject.Object"},
	{"/Script/Engine.AmbientSound", "/Script/Engine.Actor"},
	{"/Script/Engine.AudioVolume", "/Script/Engine.Volume"},
	{"/Script/Engine.BlockingVolume", "/Script/Engine.Volume"},
	{"/Script/Engine.BoxReflectionCapture", "/Script/Engine.ReflectionCapture"},
	{"/Script/Engine.Brush", "/Script/Engine.Actor"},
	{"/Script/Engine.CameraActor", "/Script/Engine.Actor"},
	{"/Script/Engine.CameraBlockingVolume", "/Script/Engine.Volume"},
	{"/Script/Engine.Character", "/Script/Engine.Pawn"},
	{"/Script/Engine.Controller", "/Script/Engine.Actor"},
	{"/Script/Engine.CullDistanceVolume", "/Script/Engine.Volume"},
	{"/Script/Engine.DecalActor", "/Script/Engine.Actor"},
	{"/Script/Engine.DefaultPawn", "/Script/Engine.Pawn"},
	{"/Script/Engine.DefaultPhysicsVolume", "/Script/Engine.PhysicsVolume"},
	{"/Script/Engine.DirectionalLight", "/Script/Engine.Light"},
	{"/Script/Engine.DocumentationActor", "/Script/Engine.Actor"},
	{"/Script/Engine.Emitter", "/Script/Engine.Actor"},
	{"/Script/Engine.ExponentialHeightFog", "/Script/Engine.Info"},
	{"/Script/Engine.GameModeBase", "/Script/Engine.Info"},
	{"/Script/Engine.GameStateBase", "/Script/Engine.Info"},
	{"/Script/Engine.GroupActor", "/Script/Engine.Actor"},
	{"/Script/Engine.Info", "/Script/Engine.Actor"},
	{"/Script/Engine.KillZVolume", "/Script/Engine.PhysicsVolume"},
	{"/Script/Engine.LevelBounds", "/Script/Engine.Actor"},
	{"/Script/Engine.LevelScriptActor", "/Script/Engine.Actor"},
	{"/Script/Engine.Light", "/Script/Engine.Actor"},
	{"/Script/Engine.LightmassImportanceVolume", "/Script/Engine.Volume"},
	{"/Script/Engine.NavigationObjectBase", "/Script/Engine.Actor"},
	{"/Script/Engine.Note", "/Script/Engine.Actor"},
	{"/Script/Engine.PainCausingVolume", "/Script/Engine.PhysicsVolume"},
	{"/Script/Engine.Pawn", "/Script/Engine.Actor"},
	{"/Script/Engine.PhysicsVolume", "/Script/Engine.Volume"},
	{"/Script/Engine.PlayerController", "/Script/Engine.Controller"},
	{"/Script/Engine.PlayerStart", "/Script/Engine.NavigationObjectBase"},
	{"/Script/Engine.PlayerStartPIE", "/Script/Engine.PlayerStart"},
	{"/Script/Engine.PointLight", "/Script/Engine.Light"},
	{"/Script/Engine.PostProcessVolume", "/Script/Engine.Volume"},
	{"/Script/Engine.RectLight", "/Script/Engine.Light"},
	{"/Script/Engine.ReflectionCapture", "/Script/Engine.Actor"},
	{"/Script/Engine.SkeletalMeshActor", "/Script/Engine.Actor"},
	{"/Script/Engine.SkyAtmosphere", "/Script/Engine.Info"},
	{"/Script/Engine.SkyLight", "/Script/Engine.Info"},
	{"/Script/Engine.SpectatorPawn", "/Script/Engine.DefaultPawn"},
	{"/Script/Engine.SphereReflectionCapture", "/Script/Engine.ReflectionCapture"},
	{"/Script/Engine.SpotLight", "/Script/Engine.Light"},
	{"/Script/Engine.StaticMeshActor", "/Script/Engine.Actor"},
	{"/Script/Engine.TargetPoint", "/Script/Engine.Actor"},
	{"/Script/Engine.TextRenderActor", "/Script/Engine.Actor"},
	{"/Script/Engine.TriggerBase", "/Script/Engine.Actor"},
	{"/Script/Engine.TriggerBox", "/Script/Engine.TriggerBase"},
	{"/Script/Engine.TriggerCapsule", "/Script/Engine.TriggerBase"},
	{"/Script/Engine.TriggerSphere", "/Script/Engine.TriggerBase"},
	{"/Script/Engine.TriggerVolume", "/Script/Engine.Volume"},
	{"/Script/Engine.Volume", "/Script/Engine.Brush"},
	{"/Script/Engine.VolumetricCloud", "/Script/Engine.Actor"},
	{"/Script/Engine.WorldDataLayers", "/Script/Engine.Info"},
	{"/Script/Engine.WorldSettings", "/Script/Engine.Info"},
	{"/Script/Foliage.InstancedFoliageActor", "/Script/Engine.Actor"},
	{"/Script/Landscape.Landscape", "/Script/Landscape.LandscapeProxy"},
	{"/Script/Landscape.LandscapeProxy", "/Script/Engine.Actor"},
	{"/Script/Landscape.LandscapeStreamingProxy", "/Script/Landscape.LandscapeProxy"},
	{"/Script/NavigationSystem.NavigationData", "/Script/Engine.Actor"},
	{"/Script/NavigationSystem.NavMeshBoundsVolume", "/Script/Engine.Volume"},
	{"/Script/NavigationSystem.RecastNavMesh", "/Script/NavigationSystem.NavigationData"},
	{"/Script/Niagara.NiagaraActor", "/Script/Engine.Actor"},
	{"/Script/QUARVEL.MapCheckpointTrigger", "/Script/Engine.Actor"},
	{"/Script/QUARVEL.MapEndTrigger", "/Script/Engine.Actor"},
};

constexpr char Lower(char Letter)
{
	return Letter >= 'A' && Letter <= 'Z' ? static_cast<char>(Letter - 'A' + 'a') : Letter;
}

constexpr bool ComesBefore(const FNativeClass& Class, std::string_view Path)
{
	return std::lexicographical_compare(Class.Path.begin(), Class.Path.end(), Path.begin(), Path.end(),
		[](char A, char B) { return Lower(A) < Lower(B); });
}
static_assert(std::is_sorted(std::begin(Classes), std::end(Classes),
	[](const FNativeClass& A, const FNativeClass& B) { return ComesBefore(A, B.Path); }));

struct FEnumProperty
{
	std::string_view ClassPath;
	std::string_view Property;
	std::string_view Enumerator;
};
constexpr FEnumProperty EnumProperties[] = {{"/Script/QUARVEL.MapCheckpointTrigger", "Type", "Start"}};

const FNativeClass* Find(std::string_view ClassPath)
{
	const auto* Found = std::lower_bound(std::begin(Classes), std::end(Classes), ClassPath, ComesBefore);
	return Found != std::end(Classes) && FQVString::EqualsIgnoreCase(Found->Path, ClassPath) ? Found : nullptr;
}
} // namespace

bool FNativeClasses::IsKnown(std::string_view ClassPath)
{
	return Find(ClassPath) != nullptr;
}

std::string_view FNativeClasses::ParentOf(std::string_view ClassPath)
{
	const FNativeClass* Found = Find(ClassPath);
	return Found != nullptr ? Found->Parent : std::string_view();
}

bool FNativeClasses::DeclaresEnum(std::string_view ClassPath, std::string_view Property, std::string_view Enumerator)
{
	return std::any_of(std::begin(EnumProperties), std::end(EnumProperties),
		[&](const FEnumProperty& Each)
		{
			return FQVString::EqualsIgnoreCase(Each.ClassPath, ClassPath) &&
				   FQVString::EqualsIgnoreCase(Each.Property, Property) &&
				   FQVString::EqualsIgnoreCase(Each.Enumerator, Enumerator);
		});
}
} // namespace QVStandalone
