// A page with the engine in it: the room sounds here, in the browser.
import { Front } from "./front.js";
import { followLink } from "./link.js";
import { Page } from "./page.js";
import { WorkletConnection } from "./worklet_connection.js";

const connection = new WorkletConnection({ sources: 3 });
const page = new Page(document.querySelector("main"), connection);
new Front(page.front, connection);
followLink(connection);
