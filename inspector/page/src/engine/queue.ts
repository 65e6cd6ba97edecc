// The order in which requests go to the worker. The small pictures beside a call come last: when one steps on, the next
// call does not wait for those of the one before.
import type { Job } from './messages';

// One is computed while the next is already there.
const kMaxInFlight = 2;
// Small pictures are computed faster than a message goes to and fro; together they come in time for the same frame.
const kMaxPicturesInFlight = 4;

const isSmallPicture = (job: Job) => job.kind === 'draw' && job.question.d !== 'page';

export class RequestQueue<Request extends { job: Job }> {
  private readonly waiting: Request[] = [];

  add(request: Request): void {
    this.waiting.push(request);
  }

  // Takes out the one to send now; undefined when none waits, or enough are at the worker.
  take(inFlight: Iterable<Request>): Request | undefined {
    let pictures = 0;
    let others = 0;
    for (const { job } of inFlight) {
      if (isSmallPicture(job)) pictures++;
      else others++;
    }
    if (others >= kMaxInFlight) return undefined;
    let index = this.waiting.findIndex(({ job }) => !isSmallPicture(job));
    if (index < 0 && others === 0 && pictures < kMaxPicturesInFlight) index = 0;
    return index < 0 ? undefined : this.waiting.splice(index, 1)[0];
  }

  takeAll(): Request[] {
    return this.waiting.splice(0);
  }
}
