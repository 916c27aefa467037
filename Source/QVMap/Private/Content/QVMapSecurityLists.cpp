// SPDX-License-Identifier: MIT
#include "Content/QVMapSecurityScanner.h"
#include "Core/QVString.h"

#include <algorithm>

namespace
{
constexpr std::string_view AllowedAssetClasses[] = {
	// textures
	"/Script/Engine.Texture", "/Script/Engine.Texture2D", "/Script/Engine.TextureCube",
	"/Script/Engine.TextureRenderTarget2D", "/Script/Engine.Texture2DArray", "/Script/Engine.VolumeTexture",
	"/Script/Engine.TextureLightProfile", "/Script/Engine.TextureCubeArray", "/Script/Engine.TextureRenderTargetCube",
	// meshes and animation
	"/Script/Engine.StaticMesh", "/Script/Engine.SkeletalMesh", "/Script/Engine.Skeleton",
	"/Script/Engine.PhysicsAsset", "/Script/Engine.AnimSequence",
	// materials
	"/Script/Engine.Material", "/Script/Engine.MaterialInstance", "/Script/Engine.MaterialInstanceConstant",
	"/Script/Engine.MaterialFunction", "/Script/Engine.MaterialParameterCollection",
	"/Script/PhysicsCore.PhysicalMaterial", "/Script/Engine.MaterialFunctionInstance",
	"/Script/Engine.MaterialFunctionMaterialLayer", "/Script/Engine.MaterialFunctionMaterialLayerInstance",
	"/Script/Engine.SubsurfaceProfile", "/Script/Engine.PhysicalMaterialMask",
	// sound
	"/Script/Engine.SoundWave", "/Script/Engine.SoundCue", "/Script/Engine.SoundAttenuation",
	"/Script/Engine.SoundConcurrency", "/Script/Engine.ReverbEffect",
	// effects
	"/Script/Niagara.NiagaraSystem", "/Script/Niagara.NiagaraEmitter", "/Script/MetasoundEngine.MetaSoundSource",
	"/Script/MetasoundEngine.MetaSoundPatch",
	// data
	"/Script/Engine.DataTable", "/Script/Engine.CurveTable", "/Script/Engine.CurveFloat", "/Script/Engine.CurveVector",
	"/Script/Engine.CurveLinearColor", "/Script/Engine.CurveLinearColorAtlas",
	// fonts
	"/Script/Engine.Font", "/Script/Engine.FontFace",
	// foliage and landscape
	"/Script/Foliage.FoliageType_InstancedStaticMesh", "/Script/Landscape.LandscapeLayerInfoObject",
	"/Script/Landscape.LandscapeGrassType",
	// levels
	"/Script/Engine.World", "/Script/Engine.Level", "/Script/Engine.MapBuildDataRegistry"};
} // namespace

const FQVNameSet& FQVMapSecurityScanner::GetAllowedAssetClasses()
{
	static const FQVNameSet Classes = []
	{
		FQVNameSet Set;
		for (const std::string_view ClassPath : AllowedAssetClasses)
		{
			Set.Add(FQVName(ClassPath));
		}
		return Set;
	}();
	return Classes;
}

bool FQVMapSecurityScanner::IsTrustedPackagePath(std::string_view PackagePath)
{
	static constexpr std::string_view TrustedRoots[] = {
		"/Script/", "/Engine/", "/Niagara/", "/Game/QUARVEL/", "/QUARVEL/"};
	return std::any_of(std::begin(TrustedRoots), std::end(TrustedRoots),
		[PackagePath](std::string_view Root) { return FQVString::StartsWithIgnoreCase(PackagePath, Root); });
}
