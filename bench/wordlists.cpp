#include "wordlists.h"

using namespace Qt::StringLiterals;

namespace BenchText {

namespace {
constexpr unsigned R = Residential;
constexpr unsigned C = Commercial;
constexpr unsigned H = HeavyCivil;
} // namespace

const std::array<Division, 22> &divisions()
{
    static const std::array<Division, 22> table = {{
        {u"01-000",
         R | C | H,
         u"01 31 00",
         {{{u"Project supervision", u"MO", 850000, 1400000, 2, 14},
           {u"Final cleaning", u"SF", 18, 45, 1500, 40000},
           {u"Dumpster hauls", u"EA", 45000, 85000, 4, 60}}}},
        {u"01-500",
         C | H,
         u"01 50 00",
         {{{u"Job trailer rental", u"MO", 45000, 90000, 3, 18},
           {u"Temporary fencing", u"LF", 350, 900, 200, 2500},
           {u"Temporary power and water", u"MO", 60000, 180000, 3, 18}}}},
        {u"02-000",
         R | C | H,
         u"02 41 00",
         {{{u"Selective interior demolition", u"SF", 250, 900, 400, 12000},
           {u"Remove existing pavement", u"SY", 600, 1800, 100, 6000},
           {u"Asbestos survey", u"LS", 150000, 450000, 1, 1}}}},
        {u"03-000",
         R | C | H,
         u"03 30 00",
         {{{u"Footings, formed and poured", u"CY", 42000, 78000, 10, 400},
           {u"4\" slab on grade with vapor barrier", u"SF", 650, 1100, 800, 30000},
           {u"Rebar, furnished and placed", u"TON", 180000, 260000, 2, 120}}}},
        {u"04-000",
         C,
         u"04 22 00",
         {{{u"8\" CMU wall, grouted solid", u"SF", 2400, 3800, 400, 9000},
           {u"Brick veneer", u"SF", 2800, 4600, 300, 8000},
           {u"Cast stone sills", u"LF", 4500, 9000, 40, 400}}}},
        {u"05-000",
         C | H,
         u"05 12 00",
         {{{u"Structural steel, erected", u"TON", 380000, 620000, 5, 300},
           {u"Steel stair with rails", u"EA", 1800000, 4200000, 1, 6},
           {u"Guard rail, galvanized", u"LF", 6500, 14000, 40, 1200}}}},
        {u"06-000",
         R | C,
         u"06 10 00",
         {{{u"Wall framing, 2x6 at 16\" o.c.", u"SF", 450, 900, 800, 20000},
           {u"Roof trusses, set", u"EA", 18000, 42000, 12, 120},
           {u"Finish carpentry and trim", u"LF", 800, 2400, 200, 4000}}}},
        {u"07-000",
         R | C,
         u"07 21 00",
         {{{u"Batt insulation, R-21", u"SF", 110, 240, 1000, 30000},
           {u"TPO roofing, 60 mil", u"SQ", 52000, 88000, 10, 400},
           {u"Sheet metal flashing", u"LF", 1200, 3200, 100, 2500}}}},
        {u"08-000",
         R | C,
         u"08 11 00",
         {{{u"Hollow metal door, frame and hardware", u"EA", 120000, 260000, 2, 80},
           {u"Aluminum storefront", u"SF", 7500, 13000, 60, 3000},
           {u"Vinyl windows", u"EA", 45000, 120000, 6, 60}}}},
        {u"09-000",
         R | C,
         u"09 29 00",
         {{{u"Gypsum board, taped and finished", u"SF", 220, 480, 1500, 60000},
           {u"Paint, two coats", u"SF", 90, 210, 2000, 80000},
           {u"Luxury vinyl plank flooring", u"SF", 450, 900, 400, 20000}}}},
        {u"10-000",
         C,
         u"10 28 00",
         {{{u"Toilet accessories", u"EA", 6000, 22000, 6, 80},
           {u"Signage package", u"LS", 250000, 900000, 1, 1},
           {u"Fire extinguishers and cabinets", u"EA", 18000, 42000, 2, 30}}}},
        {u"11-000",
         C,
         u"11 31 00",
         {{{u"Residential appliances", u"EA", 60000, 240000, 2, 20},
           {u"Loading dock leveler", u"EA", 650000, 1400000, 1, 4},
           {u"Break room equipment", u"LS", 300000, 900000, 1, 1}}}},
        {u"12-000",
         R | C,
         u"12 35 00",
         {{{u"Casework, plastic laminate", u"LF", 22000, 48000, 10, 300},
           {u"Solid surface countertops", u"SF", 6500, 12000, 20, 600},
           {u"Window blinds", u"EA", 9000, 24000, 6, 120}}}},
        {u"21-000",
         C,
         u"21 13 00",
         {{{u"Wet pipe sprinkler system", u"SF", 320, 650, 2000, 60000},
           {u"Fire riser and backflow", u"EA", 1800000, 3600000, 1, 2},
           {u"Fire pump", u"EA", 4500000, 9000000, 1, 1}}}},
        {u"22-000",
         R | C,
         u"22 11 00",
         {{{u"Plumbing fixtures, set", u"EA", 65000, 180000, 3, 80},
           {u"Domestic water piping", u"LF", 2200, 5200, 100, 4000},
           {u"Water heater", u"EA", 180000, 650000, 1, 6}}}},
        {u"23-000",
         R | C,
         u"23 74 00",
         {{{u"Rooftop unit, 10 ton", u"EA", 1800000, 3400000, 1, 12},
           {u"Ductwork, galvanized", u"LB", 900, 1600, 400, 30000},
           {u"Split system heat pump", u"EA", 650000, 1400000, 1, 10}}}},
        {u"26-000",
         R | C | H,
         u"26 05 00",
         {{{u"Branch wiring and devices", u"SF", 650, 1400, 800, 60000},
           {u"LED light fixtures", u"EA", 18000, 52000, 10, 600},
           {u"Service and distribution", u"LS", 1500000, 9000000, 1, 1}}}},
        {u"27-000",
         C,
         u"27 15 00",
         {{{u"Data drops, Cat 6", u"EA", 18000, 32000, 10, 400},
           {u"Access control doors", u"EA", 250000, 520000, 1, 20},
           {u"Security cameras", u"EA", 60000, 140000, 4, 60}}}},
        {u"31-000",
         R | C | H,
         u"31 23 00",
         {{{u"Mass excavation", u"CY", 900, 2400, 200, 60000},
           {u"Structural fill, compacted", u"CY", 2800, 5200, 100, 30000},
           {u"Erosion control, silt fence", u"LF", 350, 800, 300, 9000}}}},
        {u"32-000",
         C | H,
         u"32 12 16",
         {{{u"Asphalt paving, 3\" compacted", u"TON", 9500, 16000, 50, 8000},
           {u"Concrete curb and gutter", u"LF", 2800, 5200, 100, 6000},
           {u"Pavement striping", u"LF", 60, 180, 500, 30000}}}},
        {u"33-000",
         C | H,
         u"33 41 00",
         {{{u"Storm drain pipe, 18\" RCP", u"LF", 9500, 18000, 100, 5000},
           {u"Sanitary manhole", u"EA", 420000, 850000, 1, 30},
           {u"Water main, 8\" DIP", u"LF", 12000, 22000, 100, 6000}}}},
        {u"34-000",
         H,
         u"34 71 00",
         {{{u"Aggregate base course", u"TON", 2800, 4800, 500, 40000},
           {u"Traffic control", u"DAY", 90000, 220000, 20, 400},
           {u"Guardrail, w-beam", u"LF", 4200, 7800, 100, 5000}}}},
    }};
    return table;
}

const QStringList &firstNames()
{
    static const QStringList l = {
        u"Avery"_s, u"Blake"_s, u"Carmen"_s, u"Dale"_s,   u"Elena"_s,  u"Felix"_s, u"Gloria"_s, u"Hector"_s,
        u"Irene"_s, u"Jamal"_s, u"Keiko"_s,  u"Luis"_s,   u"Marta"_s,  u"Nolan"_s, u"Olive"_s,  u"Pavel"_s,
        u"Quinn"_s, u"Rosa"_s,  u"Silas"_s,  u"Tessa"_s,  u"Umar"_s,   u"Vera"_s,  u"Wade"_s,   u"Ximena"_s,
        u"Yusuf"_s, u"Zoe"_s,   u"Arlo"_s,   u"Bianca"_s, u"Curtis"_s, u"Dana"_s,  u"Emmett"_s, u"Frida"_s,
        u"Grant"_s, u"Hazel"_s, u"Ivan"_s,   u"June"_s,   u"Kurt"_s,   u"Lena"_s,  u"Marco"_s,  u"Nadia"_s,
        u"Oscar"_s, u"Priya"_s, u"Reid"_s,   u"Sonia"_s,  u"Troy"_s,   u"Uma"_s,   u"Victor"_s, u"Willa"_s,
    };
    return l;
}

const QStringList &lastNames()
{
    static const QStringList l = {
        u"Abernathy"_s,  u"Baxter"_s,    u"Castellano"_s, u"Delgado"_s,   u"Eastman"_s,  u"Fairbanks"_s,
        u"Galloway"_s,   u"Holloway"_s,  u"Ingram"_s,     u"Jaramillo"_s, u"Kowalski"_s, u"Lindqvist"_s,
        u"Maddox"_s,     u"Nakamura"_s,  u"Okafor"_s,     u"Pemberton"_s, u"Quintero"_s, u"Rasmussen"_s,
        u"Salazar"_s,    u"Thornton"_s,  u"Underhill"_s,  u"Vasquez"_s,   u"Whitaker"_s, u"Yardley"_s,
        u"Zielinski"_s,  u"Ashford"_s,   u"Brennan"_s,    u"Calloway"_s,  u"Dunmore"_s,  u"Ellison"_s,
        u"Fitzgerald"_s, u"Garner"_s,    u"Hargrove"_s,   u"Iverson"_s,   u"Jessup"_s,   u"Kimura"_s,
        u"Lockhart"_s,   u"Mercer"_s,    u"Northcott"_s,  u"Oyelaran"_s,  u"Prescott"_s, u"Rowan"_s,
        u"Sorensen"_s,   u"Tillman"_s,   u"Vance"_s,      u"Winslow"_s,   u"Easterly"_s, u"Larkspur"_s,
        u"Marchetti"_s,  u"Ostrander"_s, u"Redfield"_s,   u"Stanhope"_s,  u"Tremaine"_s, u"Wexford"_s,
        u"Ackerly"_s,    u"Bramwell"_s,  u"Crowder"_s,    u"Dorsett"_s,   u"Everly"_s,   u"Halvorsen"_s,
    };
    return l;
}

const QStringList &streets()
{
    static const QStringList l = {
        u"Maple"_s,    u"Cedar"_s,   u"Harbor"_s,   u"Ridgeline"_s, u"Orchard"_s,  u"Mill Creek"_s,
        u"Sycamore"_s, u"Granite"_s, u"Lakeview"_s, u"Bayside"_s,   u"Foothill"_s, u"Juniper"_s,
        u"Quarry"_s,   u"Sunset"_s,  u"Willow"_s,   u"Canal"_s,     u"Meadow"_s,   u"Pioneer"_s,
        u"Copper"_s,   u"Aspen"_s,   u"Station"_s,  u"Kestrel"_s,   u"Tamarack"_s, u"Union"_s,
    };
    return l;
}

const QStringList &cities()
{
    static const QStringList l = {
        u"Alder Springs"_s, u"Brookhaven Flats"_s, u"Corvina"_s, u"Dunmore Valley"_s,
        u"Eastport"_s,      u"Fallbrook Mesa"_s,   u"Granton"_s, u"Hollis Bay"_s,
    };
    return l;
}

const QStringList &trades()
{
    static const QStringList l = {
        u"Electrical"_s, u"Plumbing"_s, u"HVAC"_s,        u"Drywall"_s,         u"Roofing"_s,
        u"Concrete"_s,   u"Masonry"_s,  u"Painting"_s,    u"Flooring"_s,        u"Steel erection"_s,
        u"Excavation"_s, u"Paving"_s,   u"Landscaping"_s, u"Fire protection"_s, u"Glazing"_s,
        u"Insulation"_s, u"Framing"_s,  u"Surveying"_s,   u"Low voltage"_s,     u"Trucking"_s,
    };
    return l;
}

const QStringList &supplierNames()
{
    static const QStringList l = {
        u"Lumber & Truss"_s,  u"Building Supply"_s, u"Ready Mix"_s,        u"Rebar Fabricators"_s,
        u"Electric Supply"_s, u"Plumbing Supply"_s, u"Equipment Rental"_s, u"Aggregates"_s,
        u"Hardware"_s,        u"Door & Frame"_s,    u"Tool Repair"_s,      u"Fuel & Lube"_s,
        u"Pipe & Precast"_s,  u"Paint Center"_s,    u"Drywall Supply"_s,   u"Portable Toilets"_s,
    };
    return l;
}

const QStringList &buildingNames(unsigned jobType)
{
    static const QStringList residential = {
        u"Residence Remodel"_s, u"Custom Home"_s, u"Kitchen and Bath Addition"_s, u"Duplex"_s,
        u"ADU and Garage"_s,    u"Townhomes"_s,   u"Second Story Addition"_s,
    };
    static const QStringList commercial = {
        u"Medical Office Building"_s,
        u"Retail Shell"_s,
        u"Fire Station"_s,
        u"Elementary School Modernization"_s,
        u"Tenant Improvement"_s,
        u"Self Storage"_s,
        u"Community Library"_s,
        u"Distribution Warehouse"_s,
        u"Dental Clinic"_s,
        u"Church Fellowship Hall"_s,
    };
    static const QStringList civil = {
        u"Culvert Replacement"_s,      u"Road Widening"_s,         u"Sewer Main Rehabilitation"_s,
        u"Storm Drain Improvements"_s, u"Bridge Approach Slabs"_s, u"Water Main Replacement"_s,
        u"Park and Ride Lot"_s,
    };
    return jobType == Residential ? residential : jobType == HeavyCivil ? civil : commercial;
}

const QStringList &equipmentTypes()
{
    static const QStringList l = {
        u"Excavator, 20-ton"_s,
        u"Mini excavator"_s,
        u"Skid steer"_s,
        u"Backhoe loader"_s,
        u"Dozer"_s,
        u"Wheel loader"_s,
        u"Smooth drum roller"_s,
        u"Dump truck"_s,
        u"Telehandler"_s,
        u"Scissor lift"_s,
        u"Boom lift, 60 ft"_s,
        u"Light tower"_s,
        u"Air compressor"_s,
        u"Generator, 45 kW"_s,
        u"Water truck"_s,
        u"Crew pickup"_s,
    };
    return l;
}

const QStringList &phases(unsigned jobType)
{
    static const QStringList building = {
        u"Permits and submittals"_s,
        u"Mobilize"_s,
        u"Demolition"_s,
        u"Site clearing"_s,
        u"Excavation"_s,
        u"Footings"_s,
        u"Underground utilities"_s,
        u"Slab on grade"_s,
        u"Framing"_s,
        u"Roofing"_s,
        u"Windows and doors"_s,
        u"Rough plumbing"_s,
        u"Rough electrical"_s,
        u"HVAC rough-in"_s,
        u"Inspections"_s,
        u"Insulation"_s,
        u"Drywall"_s,
        u"Paint"_s,
        u"Flooring"_s,
        u"Casework"_s,
        u"Fixtures and trim"_s,
        u"Site paving"_s,
        u"Landscaping"_s,
        u"Punch list"_s,
        u"Final inspection"_s,
        u"Closeout"_s,
    };
    static const QStringList civil = {
        u"Permits and submittals"_s,
        u"Mobilize"_s,
        u"Traffic control setup"_s,
        u"Survey and staking"_s,
        u"Clearing and grubbing"_s,
        u"Erosion control"_s,
        u"Excavation"_s,
        u"Pipe installation"_s,
        u"Structures"_s,
        u"Backfill"_s,
        u"Subgrade"_s,
        u"Aggregate base"_s,
        u"Curb and gutter"_s,
        u"Paving"_s,
        u"Striping"_s,
        u"Restoration"_s,
        u"Punch list"_s,
        u"Demobilize"_s,
    };
    return jobType == HeavyCivil ? civil : building;
}

const QStringList &locations()
{
    static const QStringList l = {
        u"the north wing"_s, u"Level 2"_s,         u"gridlines C-4 to C-7"_s, u"the east parking lot"_s,
        u"the lobby"_s,      u"Unit 3"_s,          u"the mechanical room"_s,  u"the main corridor"_s,
        u"Station 12+50"_s,  u"the roof"_s,        u"the south elevation"_s,  u"the loading dock"_s,
        u"the kitchen"_s,    u"the crawl space"_s, u"the retaining wall"_s,   u"the west entry"_s,
    };
    return l;
}

const QStringList &workSentences()
{
    static const QStringList l = {
        u"Formed and poured footings at %1."_s,
        u"Placed and finished slab at %1; cylinders taken for testing."_s,
        u"Framing crew continued walls at %1."_s,
        u"Set trusses at %1 with the telehandler and braced per plan."_s,
        u"Electrician pulled wire and set boxes at %1."_s,
        u"Plumber completed rough-in at %1 and pressure tested."_s,
        u"HVAC sub hung duct at %1."_s,
        u"Hung and taped drywall at %1."_s,
        u"Painters primed walls at %1."_s,
        u"Excavated for utilities at %1 and hauled spoils off site."_s,
        u"Backfilled and compacted at %1 in 8-inch lifts."_s,
        u"Installed storm drain pipe at %1; bedding inspected."_s,
        u"Laid block at %1 to course 12."_s,
        u"Roofers loaded material and started membrane at %1."_s,
        u"Installed door frames and hardware at %1."_s,
        u"Cleaned up debris and swept %1."_s,
        u"Set casework and countertops at %1."_s,
        u"Paved the base lift at %1."_s,
        u"Poured curb and gutter at %1."_s,
        u"Layout for the next pour at %1."_s,
        u"Installed insulation at %1 ahead of the cover inspection."_s,
        u"Fire sprinkler sub ran branch lines at %1."_s,
        u"Trenched for electrical conduit at %1."_s,
        u"Received and stocked material for %1."_s,
        u"Tiled floors and walls at %1."_s,
        u"Installed light fixtures at %1 and tested circuits."_s,
        u"Graded and fine-graded %1 for base rock."_s,
        u"Set manhole sections at %1."_s,
    };
    return l;
}

const QStringList &delaySentences()
{
    static const QStringList l = {
        u"Rain stopped work at noon; crew sent home at 1:00."_s,
        u"Concrete truck arrived an hour late."_s,
        u"Waiting on RFI answer for the beam pocket detail."_s,
        u"Inspector did not show; rescheduled for tomorrow."_s,
        u"Owner changed the door swing at %1; work on hold."_s,
        u"Pump broke down; replacement arrived at 10:30."_s,
        u"Utility conflict found at %1; called the locator."_s,
        u"Material delivery short two pallets; reordered."_s,
        u"High winds, lift work stopped after lunch."_s,
        u"Sub crew short-handed, only two men on site."_s,
    };
    return l;
}

const QStringList &visitorSentences()
{
    static const QStringList l = {
        u"Building inspector passed the footing inspection."_s,
        u"Architect walked the site and reviewed %1."_s,
        u"Owner's representative visited at 2:00."_s,
        u"Testing lab took compaction tests at %1."_s,
        u"Fire marshal reviewed the sprinkler rough-in."_s,
        u"City engineer reviewed traffic control."_s,
    };
    return l;
}

const QStringList &safetyTopics()
{
    static const QStringList l = {
        u"ladder safety"_s,
        u"trench protection"_s,
        u"fall protection"_s,
        u"heat illness"_s,
        u"silica dust"_s,
        u"housekeeping"_s,
        u"struck-by hazards"_s,
        u"hand tools"_s,
        u"lockout/tagout"_s,
        u"scaffold inspection"_s,
        u"PPE"_s,
        u"fire extinguishers"_s,
    };
    return l;
}

const QStringList &rfiQuestions()
{
    static const QStringList l = {
        u"Drawings show conflicting elevations for the top of footing at %1. Please confirm which governs."_s,
        u"The specified fixture is discontinued. Is the attached substitution acceptable?"_s,
        u"Duct routing at %1 conflicts with the beam. Can the duct be lowered 6 inches?"_s,
        u"No detail is provided for the roof-to-wall transition at %1. Please provide one."_s,
        u"Existing utilities found at %1 are not on the survey. How should we proceed?"_s,
        u"Door hardware schedule lists two sets for the same opening. Which is correct?"_s,
        u"Please confirm the paint color for %1; the finish schedule is blank."_s,
        u"Rebar spacing on the structural sheet differs from the detail. Please clarify."_s,
    };
    return l;
}

const QStringList &rfiAnswers()
{
    static const QStringList l = {
        u"Structural drawings govern. Proceed as shown on S-201."_s,
        u"Substitution accepted as submitted."_s,
        u"Lower the duct as proposed; maintain 8 ft clear."_s,
        u"See attached sketch SK-4 for the detail."_s,
        u"Relocate the line per the attached sketch; submit a change order request for the added work."_s,
        u"Use hardware set 12."_s,
    };
    return l;
}

const QStringList &meetingNotes()
{
    static const QStringList l = {
        u"Reviewed the three-week look-ahead; framing is two days behind."_s,
        u"Owner asked for pricing on added outlets at %1."_s,
        u"Open RFIs reviewed; two remain with the architect."_s,
        u"Submittal log reviewed; storefront shop drawings returned revise and resubmit."_s,
        u"Safety: housekeeping at %1 needs attention."_s,
        u"Pay application for last month approved; check expected next week."_s,
        u"Utility company confirmed the meter set date."_s,
        u"Discussed the weather days and the effect on the finish date."_s,
        u"Punch walk scheduled with the owner and architect."_s,
    };
    return l;
}

const QStringList &actionItems()
{
    static const QStringList l = {
        u"submit revised storefront drawings"_s,
        u"price the added outlets"_s,
        u"answer RFI on the beam pocket"_s,
        u"schedule the cover inspection"_s,
        u"send updated look-ahead"_s,
        u"confirm paint colors"_s,
        u"order long-lead switchgear"_s,
        u"clean up laydown area"_s,
    };
    return l;
}

const QStringList &punchItems()
{
    static const QStringList l = {
        u"Touch up paint"_s,          u"Adjust door closer"_s,           u"Replace cracked outlet cover"_s,
        u"Caulk at countertop"_s,     u"Missing cabinet pull"_s,         u"Patch drywall ding"_s,
        u"Clean window glazing"_s,    u"Install missing base trim"_s,    u"Fix dripping faucet"_s,
        u"Re-stripe parking stall"_s, u"Replace damaged ceiling tile"_s, u"Secure loose handrail"_s,
        u"Label electrical panel"_s,  u"Seal concrete crack"_s,          u"Grout missing at tile"_s,
    };
    return l;
}

const QStringList &changeReasons()
{
    static const QStringList l = {
        u"Owner requested added scope at %1."_s,
        u"Unforeseen condition found during excavation at %1."_s,
        u"Design change per architect's bulletin."_s,
        u"Credit for deleted scope at %1."_s,
        u"Added work required by the building inspector."_s,
        u"Allowance reconciliation."_s,
    };
    return l;
}

const QStringList &extraWork()
{
    static const QStringList l = {
        u"Labor, foreman"_s,  u"Labor, carpenter"_s, u"Labor, laborer"_s, u"Materials"_s,
        u"Equipment hours"_s, u"Dumpster haul"_s,    u"Small tools"_s,    u"Overtime premium"_s,
    };
    return l;
}

} // namespace BenchText
