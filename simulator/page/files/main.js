// Starts every part of the page, then listens to the simulator.

import { startAppearance } from "./appearance.js";
import { startDetail } from "./detail.js";
import { startFaults } from "./faults.js";
import { listen } from "./feed.js";
import { startKeys } from "./keys.js";
import { startPayloads } from "./payloads.js";
import { startTraffic } from "./traffic.js";
import { startVehicle } from "./vehicle.js";
import { startViews } from "./views.js";

startAppearance();
startViews();
startDetail();
startPayloads();
startVehicle();
startFaults();
startTraffic();
startKeys();
listen();
