// The stored features of a camera: a register that depends on two selectors, a float and a text.
#pragma once

namespace koro::fuzz
{

inline constexpr const char* storedFeatures =
    R"(<RegisterDescription ModelName="M" VendorName="V" StandardNameSpace="None" SchemaMajorVersion="1"
    SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0" SubMinorVersion="0"
    ProductGuid="p" VersionGuid="v" xmlns="http://www.genicam.org/GenApi/Version_1_1">
  <Category Name="Root"><pFeature>G</pFeature><pFeature>F</pFeature><pFeature>T</pFeature></Category>
  <Enumeration Name="S"><EnumEntry Name="A"><Value>0</Value></EnumEntry><EnumEntry Name="B"><Value>1</Value></EnumEntry>
    <Value>0</Value><pSelected>G</pSelected></Enumeration>
  <Integer Name="I"><Value>0</Value><Min>0</Min><Max>3</Max><pSelected>S</pSelected></Integer>
  <IntReg Name="G"><Streamable>Yes</Streamable><Address>0</Address><pIndex Offset="1">S</pIndex>
    <pIndex Offset="2">I</pIndex><Length>1</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
    <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <Float Name="F"><Streamable>Yes</Streamable><Value>1</Value></Float>
  <String Name="T"><Streamable>Yes</Streamable><Value>x</Value></String>
  <Port Name="Device"/></RegisterDescription>)";

} // namespace koro::fuzz
